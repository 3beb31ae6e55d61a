// Case folding: two names are the same when their folded forms are.
#pragma once

#include <string>
#include <string_view>

namespace storage {

std::u16string Fold(std::u16string_view text);

} // namespace storage
