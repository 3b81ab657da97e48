// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "core/io/idataprovider.h"

namespace VANTIX::PS {

/// Gathers the characters of one token, so that they reach the provider in one write (a token
/// of more than 256 bytes in several). What was gathered is written at the end of its scope.
class TokenWriter {
public:
    /// Without a provider the token is lost.
    explicit TokenWriter(IO::IDataProvider* provider) : mProvider(provider) {}

    TokenWriter(const TokenWriter&) = delete;
    TokenWriter& operator=(const TokenWriter&) = delete;
    TokenWriter(TokenWriter&&) = delete;
    TokenWriter& operator=(TokenWriter&&) = delete;

    ~TokenWriter() { Flush(); }

    /// Lends room for `count` characters, at most `kRoom`; `Advance` says how many were used.
    [[nodiscard]] char* Room(std::size_t count) {
        if (mText.size() - mUsed < count) {
            Flush();
        }
        return mText.data() + mUsed;
    }

    void Advance(const char* end) { mUsed = static_cast<std::size_t>(end - mText.data()); }

    void Put(char c) {
        *Room(1) = c;
        ++mUsed;
    }

    void Put(std::string_view text) {
        if (text.size() > mText.size()) {
            Flush();
            Send(text.data(), text.size());
            return;
        }
        Advance(std::copy(text.begin(), text.end(), Room(text.size())));
    }

    static constexpr std::size_t kRoom = 256;

private:
    void Flush() {
        if (mUsed != 0) {
            Send(mText.data(), mUsed);
            mUsed = 0;
        }
    }

    void Send(const char* text, std::size_t count) {
        if (mProvider != nullptr) {
            mProvider->Write(text, count);
        }
    }

    IO::IDataProvider* mProvider;
    std::size_t mUsed = 0;
    std::array<char, kRoom> mText;
};

}  // namespace VANTIX::PS
