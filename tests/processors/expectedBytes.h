#pragma once

#include <string>

namespace VeskLib::Test {

// Expects `text` to equal the checked-in file `name`. If RENEW_EXPECTED is set in the environment,
// writes `text` to the file first; use it after a deliberate change to a skeleton, a text or a wire
// form.
void expectBytes(const std::string& text, const std::string& name);

}  // namespace VeskLib::Test
