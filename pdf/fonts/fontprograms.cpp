// SPDX-License-Identifier: MIT
#include "pdf/fonts/fontprograms.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "host/fonts/glyphnames.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

/// No font has more; what claims to is hostile.
constexpr std::size_t kLargestProgram = std::size_t{64} << 20U;

bool BeginsWith(const std::vector<std::uint8_t>& bytes, std::string_view start) {
    return bytes.size() >= start.size() &&
           std::equal(start.begin(), start.end(), bytes.begin(), [](char c, std::uint8_t byte) {
               return static_cast<std::uint8_t>(c) == byte;
           });
}

bool IsTrueType(const std::vector<std::uint8_t>& bytes) {
    using namespace std::string_view_literals;
    return BeginsWith(bytes, "\0\1\0\0"sv) || BeginsWith(bytes, "true") ||
           BeginsWith(bytes, "ttcf");
}

bool IsCff(const std::vector<std::uint8_t>& bytes) {
    using namespace std::string_view_literals;
    return BeginsWith(bytes, "OTTO") || BeginsWith(bytes, "\1\0"sv);
}

}  // namespace

std::size_t FontProgram::FileSize() const {
    if (type1 || cff) {
        return type1 ? type1->FileSize() : cff->FileSize();
    }
    return trueType ? trueType->FileSize() : 0;
}

std::shared_ptr<const HOST::SimpleProgram> FontProgram::Simple() const {
    if (type1) {
        return type1;
    }
    if (cff) {
        return cff;
    }
    return trueType;
}

HOST::NamedProgram* FontProgram::Named() const {
    return type1 ? static_cast<HOST::NamedProgram*>(type1.get()) : cff.get();
}

const FontProgram& FontPrograms::Embedded(const QPDFObjectHandle& stream, const std::string& name,
                                          FontUse use) {
    const std::string shared = QPDFObjectHandle(stream).getObjGen().unparse(' ');
    const std::string own = shared + (use == FontUse::kSimple ? " names" : " CIDs");
    for (const std::string& key : {shared, own}) {
        const auto known = mPrograms.find(key);
        if (known != mPrograms.end()) {
            return known->second;
        }
    }
    std::string data;
    if (AppendStreamData(stream, data, kLargestProgram) == StreamResult::kTooLarge) {
        data.clear();
    }
    std::vector<std::uint8_t> bytes(data.begin(), data.end());
    const std::string& key = IsCff(bytes) ? own : shared;
    return Open(key, std::move(bytes), name, use);
}

const FontProgram& FontPrograms::Installed(const HOST::FoundFont& font, FontUse use) {
    const bool isShared = font.isTrueType || use == FontUse::kSimple;
    const std::string key = font.path + ' ' + std::to_string(font.face) + (isShared ? "" : " CIDs");
    const auto known = mPrograms.find(key);
    FontProgram& program =
        known != mPrograms.end() ? known->second : Open(key, font.bytes, font.name, use);
    if (use == FontUse::kComposite && !program.characters) {
        program.characters = std::make_shared<HOST::CharacterGlyphs>(font.bytes);
    }
    return program;
}

FontProgram& FontPrograms::Open(const std::string& key, std::vector<std::uint8_t> bytes,
                                const std::string& name, FontUse use) {
    FontProgram program;
    program.name = UniqueName(bytes, name);
    if (bytes.empty()) {
        program.problem = "its data cannot be read";
    } else if (IsTrueType(bytes)) {
        program.trueType = HOST::TrueTypeProgram::Open(std::move(bytes), program.problem);
    } else if (IsCff(bytes)) {
        OpenCff(std::move(bytes), use, program);
    } else {
        program.type1 = HOST::Type1Program::Open(bytes, program.problem);
    }
    if (program.type1) {
        program.type1->Rename(program.name);
        program.type1->UseText(mOptions.textOnly);
    }
    if (program.trueType) {
        program.trueType->ExpectConversion(!mOptions.trueType);
    }
    return mPrograms.emplace(key, std::move(program)).first->second;
}

// At level 3 CFF goes out in binary, and whole: so what must be text, or has flaws that would end a
// job, becomes Type 1 here, as it does everywhere at level 2. So does a CID-keyed program, which
// needs names.
void FontPrograms::OpenCff(std::vector<std::uint8_t> bytes, FontUse use,
                           FontProgram& program) const {
    constexpr std::int32_t kFontSetLevel = 3;
    program.cff = HOST::CffProgram::Open(std::move(bytes), program.problem);
    if (!program.cff || use == FontUse::kComposite) {
        return;
    }
    program.hasNames = !program.cff->IsCidKeyed();
    if (program.hasNames && mOptions.languageLevel < kFontSetLevel) {
        program.cff->Rename(program.name);
        program.cff->ExpectConversion(true);
    } else if (!program.hasNames || mOptions.textOnly || !program.cff->IsSound()) {
        program.type1 = HOST::Type1Program::Open(program.cff->AsType1(), program.problem);
        program.cff = nullptr;
    } else {
        program.cff->Rename(program.name);
    }
}

// A subset called Helvetica must not take the place of the interpreter's own font.
std::string FontPrograms::UniqueName(const std::vector<std::uint8_t>& bytes,
                                     const std::string& name) {
    constexpr std::size_t kMaxBase = 80;
    constexpr std::size_t kTag = 6;
    constexpr std::uint64_t kLetters = 26;
    constexpr std::uint64_t kBasis = 0xCBF29CE484222325U;  // FNV-1a
    constexpr std::uint64_t kPrime = 0x100000001B3U;
    std::uint64_t hash = kBasis;
    for (const std::uint8_t byte : bytes) {
        hash = (hash ^ byte) * kPrime;
    }
    const std::string base =
        name.empty() ? "Font" : HOST::SanitiseGlyphName(name.substr(0, kMaxBase));
    for (;; ++hash) {
        std::string unique;
        for (std::uint64_t rest = hash; unique.size() < kTag; rest /= kLetters) {
            unique += static_cast<char>('A' + rest % kLetters);
        }
        unique += '+' + base;
        if (mNames.insert(unique).second) {
            return unique;
        }
    }
}

}  // namespace VANTIX::PDF
