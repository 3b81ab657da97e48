// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "charstringwords.h"
#include "fontbuilderfixture.h"

namespace VANTIX::TEST {

/// A glyph as the words of a Type 2 charstring.
struct CFFGlyph {
    std::string name;
    std::string words;
};

inline constexpr float kCFFNominalWidth = 900;
inline constexpr float kCFFDefaultWidth = 1000;

/// The box draws its lines by a local subroutine.
inline std::vector<CFFGlyph> CFFGlyphs() {
    return {{".notdef", "-400 [14]"},
            {"box", "100 800 [3] 100 [22] -107 [10] [14]"},
            {"leaf",
             "0 800 [18] [19] #80 500 0 [21] -333 -167 133 267 267 167 133 333 333 167 -133 -267 "
             "-267 -167 -133 -333 [31] [14]"},
            {"space", "-650 [14]"}};
}

inline std::string CFFSubroutine() {
    return MakeCharString("800 800 -800 [7] [11]");
}

inline std::string CFFIndex(const std::vector<std::string>& items) {
    const auto size = [](const std::string& text) {
        return static_cast<std::uint32_t>(text.size());
    };
    std::string offsets = Big(1, 2);
    std::string data;
    for (const std::string& item : items) {
        data += item;
        offsets += Big(size(data) + 1, 2);
    }
    return Big(static_cast<std::uint32_t>(items.size()), 2) +
           (items.empty() ? std::string() : '\2' + offsets + data);
}

/// A number of a DICT, five bytes long.
inline std::string CFFNumber(std::size_t value) {
    return '\35' + Big(static_cast<std::uint32_t>(value), 4);
}

/// A CFF program of these glyphs, with the standard encoding.
inline std::string MakeCFF(const std::string& name, const std::vector<CFFGlyph>& glyphs) {
    std::vector<std::string> names;
    std::vector<std::string> charStrings;
    std::string charset(1, '\0');
    for (const CFFGlyph& glyph : glyphs) {
        charStrings.push_back(MakeCharString(glyph.words));
        if (charStrings.size() > 1) {
            constexpr std::uint32_t kStandardStrings = 391;
            charset += Big(kStandardStrings + static_cast<std::uint32_t>(names.size()), 2);
            names.push_back(glyph.name);
        }
    }
    const std::string widths = CFFNumber(static_cast<std::size_t>(kCFFDefaultWidth)) + '\24' +
                               CFFNumber(static_cast<std::size_t>(kCFFNominalWidth)) + '\25';
    const std::string privateDict = widths + CFFNumber(widths.size() + 6) + '\23';
    const auto topDict = [&](std::size_t start) {
        const std::size_t glyphStart = start + charset.size();
        const std::size_t privateStart = glyphStart + CFFIndex(charStrings).size();
        return CFFNumber(0) + CFFNumber(0) + CFFNumber(1000) + CFFNumber(800) + '\5' +
               CFFNumber(start) + '\17' + CFFNumber(glyphStart) + '\21' +
               CFFNumber(privateDict.size()) + CFFNumber(privateStart) + '\22';
    };
    const auto head = [&](std::size_t start) {
        return std::string("\1\0\4\2", 4) + CFFIndex({name}) + CFFIndex({topDict(start)}) +
               CFFIndex(names) + CFFIndex({});
    };
    return head(head(0).size()) + charset + CFFIndex(charStrings) + privateDict +
           CFFIndex({CFFSubroutine()});
}

/// What both kinds of CFF programs offer: one local subroutine.
template <class I>
class FakeCFFBase : public TObject<I> {
public:
    std::vector<CFFGlyph> glyphs = CFFGlyphs();

    std::int32_t GetLocalBias(std::uint16_t /*fontDict*/) const override { return 107; }

    std::int32_t GetGlobalBias() const override { return 107; }

    std::int32_t CopyLocalSubroutine(std::uint16_t /*fontDict*/, std::int32_t number,
                                     std::uint8_t* buffer) const override {
        const std::string bytes = number == 0 ? CFFSubroutine() : std::string();
        std::copy(bytes.begin(), bytes.end(), buffer);
        return static_cast<std::int32_t>(bytes.size());
    }

    std::int32_t CopyGlobalSubroutine(std::int32_t /*number*/,
                                      std::uint8_t* /*buffer*/) const override {
        return 0;
    }

protected:
    /// Calls with each glyph, its number and its charstring.
    template <class Function>
    void ForEach(Function function) const {
        std::uint16_t index = 0;
        for (const CFFGlyph& glyph : glyphs) {
            const std::string bytes = MakeCharString(glyph.words);
            const auto* data =
                static_cast<const std::uint8_t*>(static_cast<const void*>(bytes.data()));
            function(glyph, index++,
                     GRAPHICS::CharString{data, static_cast<std::int32_t>(bytes.size()),
                                          kCFFNominalWidth, kCFFDefaultWidth});
        }
    }
};

class FakeCFF : public FakeCFFBase<GRAPHICS::ICFFAncillary> {
public:
    TestEncoding encoding;

    void EnumerateCharStrings(GRAPHICS::ICharStringFunctor& functor) const override {
        ForEach([&](const CFFGlyph& glyph, std::uint16_t /*index*/, const auto& charString) {
            functor(glyph.name.c_str(), charString);
        });
    }

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        PlayEncoding(encoding, functor);
    }
};

/// CIDs are the numbers of the glyphs; font DICTs follow each other over and over.
class FakeCIDKeyedCFF : public FakeCFFBase<GRAPHICS::ICIDKeyedCFFAncillary> {
public:
    std::int32_t fontDicts = 1;
    std::vector<float> matrix;
    GRAPHICS::PrivateValues privateValues;

    const char* GetRegistry() const override { return "Reg(istry"; }

    const char* GetOrdering() const override { return "Japan1"; }

    std::int32_t GetSupplement() const override { return 6; }

    float GetCIDFontVersion() const override { return 1.5F; }

    std::int32_t GetCIDCount() const override { return 4; }

    std::int32_t GetFontDictCount() const override { return fontDicts; }

    const float* GetFontDictMatrix(std::int32_t /*index*/) const override {
        return matrix.empty() ? nullptr : matrix.data();
    }

    const char* GetFontDictName(std::int32_t index) const override {
        return index == 0 ? "First" : nullptr;
    }

    GRAPHICS::PrivateValues GetFontDictPrivate(std::int32_t /*index*/) const override {
        return privateValues;
    }

    void EnumerateCharStrings(GRAPHICS::ICIDCharStringFunctor& functor) const override {
        ForEach([&](const CFFGlyph& /*glyph*/, std::uint16_t index, const auto& charString) {
            functor(index, static_cast<std::uint16_t>(index % std::max(fontDicts, 1)), charString);
        });
    }

    void EnumerateVerticalMetrics(GRAPHICS::IVerticalMetricFunctor& functor) const override {
        const float values[] = {0, -1000, 500, 880};
        functor(1, values);
    }
};

class FakeCIDKeyedTrueType : public TObject<GRAPHICS::ICIDKeyedT42Ancillary> {
public:
    std::vector<TestGlyph> glyphs = TestGlyphs();
    TestTables tables = MakeTables(glyphs);
    std::string registry = "Vantix";

    const char* GetRegistry() const override { return registry.c_str(); }

    const char* GetOrdering() const override { return "Identity"; }

    std::int32_t GetSupplement() const override { return 0; }

    float GetCIDFontVersion() const override { return 0; }

    std::int32_t GetCIDCount() const override { return 4; }

    std::int32_t GetUnitsPerEm() const override { return kTestUnits; }

    void EnumerateGlyphs(GRAPHICS::ICIDGlyphFunctor& functor) const override {
        std::uint16_t cid = 0;
        for (const TestGlyph& glyph : glyphs) {
            const FakeGlyphRecording recording(glyph);
            functor(glyph.name == "lost" ? nullptr : &recording, cid++);
        }
    }

    void EnumerateTables(GRAPHICS::ITableFunctor& functor) const override {
        functor("hmtx"_cc, nullptr, 0);
    }

    std::int32_t GetUnicodeCount() const override { return 1; }

    void EnumerateUnicode(GRAPHICS::ICIDToUnicodeFunctor& functor) const override {
        functor(1, 0x5186);
    }

    void EnumerateVerticalMetrics(GRAPHICS::IVerticalMetricFunctor& functor) const override {
        const float values[] = {0, -1, 0.5F, 0.88F};
        functor(2, values);
    }
};

inline TInterfacePtr<FakeFont> CFFFont(const std::string& name, const TestEncoding& encoding) {
    auto font = MakeObject<FakeFont>();
    font->type = GRAPHICS::TFontType::kCFF;
    font->name = name;
    font->matrix = {0.001F, 0, 0, 0.001F, 0, 0};
    const auto ancillary = MakeObject<FakeCFF>();
    ancillary->encoding = encoding;
    font->Aggregate(ancillary.Get(), GRAPHICS::IID_ICFFANCILLARY);
    font->Aggregate(MakeObject<FakeFontData>(MakeCFF(name, ancillary->glyphs)).Get(),
                    GRAPHICS::IID_IFONTDATA);
    return font;
}

class VerticalWriting : public TObject<GRAPHICS::ICompositeFontInfo> {
public:
    bool IsVertical() const override { return true; }
};

inline void MakeVertical(FakeFont& font) {
    font.Aggregate(MakeObject<VerticalWriting>().Get(), GRAPHICS::IID_ICOMPOSITEFONTINFO);
}

inline TInterfacePtr<FakeFont> CIDKeyedCFFFont(FakeCIDKeyedCFF& ancillary) {
    auto font = MakeObject<FakeFont>();
    font->type = GRAPHICS::TFontType::kCIDKeyedCFF;
    font->Aggregate(&ancillary, GRAPHICS::IID_ICIDKEYEDCFFANCILLARY);
    return font;
}

inline TInterfacePtr<FakeFont> CIDKeyedTrueTypeFont() {
    auto font = TrueTypeFont({});
    font->type = GRAPHICS::TFontType::kCIDKeyedTrueType;
    font->Aggregate(MakeObject<FakeCIDKeyedTrueType>().Get(), GRAPHICS::IID_ICIDKEYEDT42ANCILLARY);
    return font;
}

}  // namespace VANTIX::TEST
