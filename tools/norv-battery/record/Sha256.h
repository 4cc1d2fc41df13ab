// The hash function SHA-256 and what it makes with a key.
#pragma once

#include <array>
#include <string_view>

namespace norv::tool {

using Digest = std::array<unsigned char, 32>;

// FIPS 180-4.
Digest Sha256(std::string_view message);

// HMAC-SHA-256, RFC 2104.
Digest KeyedSha256(std::string_view key, std::string_view message);

}  // namespace norv::tool
