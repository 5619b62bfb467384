#include "platform/host/web/formPolicy.h"

namespace VeskLib::Host {

FormPolicy& formPolicy() {
    static FormPolicy policy;
    return policy;
}

}  // namespace VeskLib::Host
