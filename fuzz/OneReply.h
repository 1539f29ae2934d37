// SPDX-License-Identifier: MIT
#pragma once

#include "platform/UrlLoader.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// Answers every request with the fuzzer's bytes.
class OneReply final : public platform::UrlLoader {
public:
    OneReply(std::uint8_t const* data, std::size_t size)
        : body_(data, data + size)
    {
    }

    std::optional<std::string> load(std::string const& /*url*/) override { return body_; }

private:
    std::string body_;
};
