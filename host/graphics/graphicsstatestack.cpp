// SPDX-License-Identifier: MIT
#include "host/graphics/graphicsstatestack.h"

#include <algorithm>
#include <string_view>

namespace VANTIX::HOST {

namespace {

template <class Array>
bool HasIndex(const Array& array, std::int32_t index) {
    return index >= 0 && static_cast<std::size_t>(index) < array.size();
}

constexpr std::int32_t kLastOverprint = 3;

}  // namespace

void GraphicsStateStack::Push() {
    mSaved.push_back(mTop);
}

void GraphicsStateStack::Pop() {
    if (!mSaved.empty()) {
        mTop = mSaved.back();
        mSaved.pop_back();
    }
}

void GraphicsStateStack::Forget() {
    mTop = {};
    mTop.intents.fill(kUnknown);
    mTop.overprint.fill(kUnknown);
}

std::uint64_t GraphicsStateStack::GetColorSpaceKey() const {
    return mTop.key;
}

void GraphicsStateStack::SetColorSpaceKey(std::uint64_t key) {
    mTop.key = key;
    mTop.colorCount = 0;
}

void GraphicsStateStack::GetColor(float values[16], std::int32_t& count) const {
    count = mTop.colorCount;
    std::copy_n(mTop.color.begin(), count, values);
}

bool GraphicsStateStack::SetColor(const float* values, std::int32_t count) {
    if (values == nullptr || count <= 0) {
        return false;
    }
    if (count > kMaxKnown) {
        mTop.colorCount = 0;
        return true;
    }
    if (count == mTop.colorCount && std::equal(values, values + count, mTop.color.begin())) {
        return false;
    }
    std::copy_n(values, count, mTop.color.begin());
    mTop.colorCount = count;
    return true;
}

std::int32_t GraphicsStateStack::GetRenderingIntent(std::int32_t index) const {
    return HasIndex(mTop.intents, index) ? mTop.intents[static_cast<std::size_t>(index)] : -1;
}

void GraphicsStateStack::SetRenderingIntent(std::int32_t index, std::int32_t intent) {
    if (HasIndex(mTop.intents, index)) {
        mTop.intents[static_cast<std::size_t>(index)] = intent;
    }
}

std::int32_t GraphicsStateStack::GetOverprint(std::int32_t index) const {
    return HasIndex(mTop.overprint, index) ? mTop.overprint[static_cast<std::size_t>(index)] : 0;
}

void GraphicsStateStack::SetOverprint(std::int32_t index, std::int32_t value) {
    if (index < 0 || index >= kLastOverprint) {
        return;
    }
    mTop.overprint[static_cast<std::size_t>(index)] = value;
    const bool isMode = index == 2;
    if (!isMode) {
        mTop.overprint[kLastOverprint] = value;
    }
}

const char* GraphicsStateStack::GetFontName() const {
    return mTop.fontName;
}

float GraphicsStateStack::GetFontSize() const {
    return mTop.fontSize;
}

void GraphicsStateStack::SetFont(const char* name, float size) {
    const std::string_view wanted = name == nullptr ? "" : name;
    auto kept = mFontNames.find(wanted);
    if (kept == mFontNames.end()) {
        kept = mFontNames.emplace(wanted).first;
    }
    mTop.fontName = kept->c_str();
    mTop.fontSize = size;
}

void GraphicsStateStack::SetTextMatrix(const float matrix[6]) {
    std::copy_n(matrix, mTop.textMatrix.size(), mTop.textMatrix.begin());
}

void GraphicsStateStack::PassThrough(const void* /*arguments*/) {}

}  // namespace VANTIX::HOST
