// SPDX-License-Identifier: MIT
#include "pdf/fonts/cmaps.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include "core/fonts/predefinedcmaps.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr int kDeepest = 8;
constexpr std::size_t kLargestCMap = std::size_t{8} << 20U;

/// Names of files: nothing that leads elsewhere.
bool IsFileName(std::string_view name) {
    constexpr std::size_t kLongest = 64;
    return !name.empty() && name.size() <= kLongest &&
           std::all_of(name.begin(), name.end(), [](char c) {
               return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                      c == '-' || c == '_';
           });
}

/// The file of a predefined CMap, or nothing: folders of collections, or of versions.
std::string InstalledCMap(std::string_view name) {
    struct Place {
        const char* folder;
        const char* below;
    };

    constexpr Place kPlaces[] = {{"/usr/share/poppler/cMap", "."},
                                 {"/usr/share/ghostscript", "Resource/CMap"}};
    if (!IsFileName(name)) {
        return {};
    }
    for (const Place& place : kPlaces) {
        std::error_code error;
        std::vector<std::filesystem::path> folders;
        for (const auto& entry : std::filesystem::directory_iterator(place.folder, error)) {
            folders.push_back(entry.path() / place.below / name);
        }
        std::sort(folders.begin(), folders.end());
        for (const std::filesystem::path& path : folders) {
            if (!std::filesystem::is_regular_file(path, error)) {
                continue;
            }
            std::ifstream file(path, std::ios::binary);
            return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        }
    }
    return {};
}

}  // namespace

std::shared_ptr<const CMap> CMaps::Find(const QPDFObjectHandle& encoding) {
    return Find(encoding, 0);
}

std::shared_ptr<const CMap> CMaps::Find(QPDFObjectHandle encoding, int depth) {
    if (encoding.isName()) {
        return Named(NameOf(encoding), depth);
    }
    return encoding.isStream() ? InStream(encoding, depth) : nullptr;
}

std::shared_ptr<const CMap> CMaps::Named(std::string_view name, int depth) {
    const std::string key = '/' + std::string(name);
    if (const auto known = mKnown.find(key); known != mKnown.end() || depth > kDeepest) {
        return known == mKnown.end() ? nullptr : known->second;
    }
    CMap map;
    bool isFound = name == "Identity-H" || name == "Identity-V";
    if (isFound) {
        map = CMap::Identity(name.back() == 'V');
    } else {
        const auto find = [&](std::string_view base) { return Named(base, depth + 1); };
        isFound = ReadCMap(InstalledCMap(name), nullptr, find, map);
    }
    auto found = isFound ? std::make_shared<const CMap>(std::move(map)) : nullptr;
    return mKnown.emplace(key, std::move(found)).first->second;
}

std::shared_ptr<const CMap> CMaps::InStream(const QPDFObjectHandle& stream, int depth) {
    const std::string key = QPDFObjectHandle(stream).getObjGen().unparse(' ');
    if (const auto known = mKnown.find(key); known != mKnown.end() || depth > kDeepest) {
        return known == mKnown.end() ? nullptr : known->second;
    }
    std::string text;
    AppendStreamData(stream, text, kLargestCMap);
    CMap map;
    const auto find = [&](std::string_view base) { return Named(base, depth + 1); };
    const bool isFound = ReadCMap(text, Find(Get(stream, "/UseCMap"), depth + 1), find, map);
    if (const auto mode = IntegerOf(Get(stream, "/WMode"))) {
        map.SetVertical(*mode == 1);
    }
    auto found = isFound ? std::make_shared<const CMap>(std::move(map)) : nullptr;
    return mKnown.emplace(key, std::move(found)).first->second;
}

const CodeTexts& CMaps::TextsOf(const std::string& ordering) {
    const auto [texts, isNew] = mTexts.try_emplace(ordering);
    if (isNew) {
        texts->second = ReadToUnicode(InstalledCMap("Adobe-" + ordering + "-UCS2"));
    }
    return texts->second;
}

std::optional<GRAPHICS::TEncoding> EncodingOfCMap(std::string_view name) {
    const auto& names = GRAPHICS::kPredefinedCMaps;
    const auto* const found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
        return std::nullopt;
    }
    return static_cast<GRAPHICS::TEncoding>(
        static_cast<std::int32_t>(GRAPHICS::TEncoding::kFirstCMap) +
        static_cast<std::int32_t>(found - names.begin()));
}

}  // namespace VANTIX::PDF
