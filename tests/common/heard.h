// What is said to a Messages object.
#pragma once

#include "ground/messages.h"

#include <string>
#include <string_view>

namespace trelm {

struct Heard {
    std::string out, err;
    Messages messages{[this](Messages::Stream stream, std::string_view text) {
        (stream == Messages::Stream::out ? out : err) += text;
    }};
    Heard() = default;
    Heard(const Heard &) = delete;
    Heard &operator=(const Heard &) = delete;
};

} // namespace trelm
