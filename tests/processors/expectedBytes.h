#pragma once

#include <string>

namespace VeskLib::Test {

// Holds `text` against the checked-in file `name`. When RENEW_EXPECTED is set in the environment,
// `text` becomes the file's content instead: after a change of a skeleton, a text or a wire form
// that is meant.
void expectBytes(const std::string& text, const std::string& name);

}  // namespace VeskLib::Test
