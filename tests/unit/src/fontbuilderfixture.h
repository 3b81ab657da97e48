// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "core/fonts/ifontpackagehandler.h"
#include "core/graphics/iconnectionspace.h"
#include "core/object/tobject.h"
#include "support/fakefactory.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::TEST {

/// A closed contour in units of the font: points on the curve, and those that bend it.
struct TestPoint {
    int x = 0;
    int y = 0;
    bool onCurve = true;
};

using TestContour = std::vector<TestPoint>;

struct TestGlyph {
    std::string name;
    int advance = 0;
    std::vector<TestContour> contours;  ///< each begins on the curve, with no two bends in a row
};

inline constexpr int kTestUnits = 1000;

/// Glyph 1 is a square, 2 a disc of two radii, 3 a blank.
inline std::vector<TestGlyph> TestGlyphs() {
    const TestContour square = {{100, 0}, {100, 800}, {900, 800}, {900, 0}};
    const TestContour leaf = {{500, 0},   {0, 0, false},      {0, 400},    {0, 800, false},
                              {500, 800}, {1000, 800, false}, {1000, 400}, {1000, 0, false}};
    return {
        {".notdef", 500, {}}, {"box", 1000, {square}}, {"leaf", 1000, {leaf}}, {"space", 250, {}}};
}

class FakeGlyphRecording : public TObject<GRAPHICS::IGlyphRecording> {
public:
    explicit FakeGlyphRecording(const TestGlyph& glyph) : mGlyph(glyph) {}

    bool Play(GRAPHICS::IConnectionSpace& space) const override {
        space.NewPath();
        for (const TestContour& contour : mGlyph.contours) {
            space.MoveTo(Em(contour[0].x), Em(contour[0].y));
            for (std::size_t i = 1; i <= contour.size(); ++i) {
                const TestPoint& point = contour[i % contour.size()];
                const TestPoint& next = contour[(i + 1) % contour.size()];
                const float points[] = {Em(point.x), Em(point.y), Em(next.x), Em(next.y)};
                if (!point.onCurve) {
                    space.QuadCurveTo(points, 1);
                    ++i;
                } else if (i < contour.size()) {
                    space.LineTo(points, 1);
                }
            }
            space.ClosePath();
        }
        space.ResetPath();
        return true;
    }

    float GetAdvanceWidth() const override { return Em(mGlyph.advance); }

    std::int32_t GetPointCount() const override {
        return static_cast<std::int32_t>(mGlyph.contours.size());
    }

private:
    static float Em(int units) { return static_cast<float>(units) / kTestUnits; }

    const TestGlyph& mGlyph;
};

/// Numbers of font data, most significant byte first.
inline std::string Big(std::uint32_t value, int bytes) {
    std::string text;
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8) {
        text += static_cast<char>(value >> shift);
    }
    return text;
}

/// Tables in the order in which they stand in the data.
using TestTables = std::vector<std::pair<std::string, std::string>>;

/// An sfnt with the tables one behind the other.
inline std::string MakeSfnt(const TestTables& tables) {
    const auto count = static_cast<std::uint32_t>(tables.size());
    std::string directory = Big(0x00010000, 4) + Big(count, 2) + std::string(6, '\0');
    std::string data;
    std::map<std::string, std::string> entries;
    for (const auto& [tag, bytes] : tables) {
        const auto offset = static_cast<std::uint32_t>(12 + 16 * count + data.size());
        entries[tag] =
            tag + Big(0, 4) + Big(offset, 4) + Big(static_cast<std::uint32_t>(bytes.size()), 4);
        data += bytes;
    }
    for (const auto& entry : entries) {
        directory += entry.second;
    }
    return directory + data;
}

inline std::string EncodeGlyph(const TestGlyph& glyph) {
    if (glyph.contours.empty()) {
        return {};
    }
    std::string ends;
    std::string flags;
    std::string xs;
    std::string ys;
    int x = 0;
    int y = 0;
    for (const TestContour& contour : glyph.contours) {
        for (const TestPoint& point : contour) {
            flags += static_cast<char>(point.onCurve);
            xs += Big(static_cast<std::uint32_t>(point.x - x), 2);
            ys += Big(static_cast<std::uint32_t>(point.y - y), 2);
            x = point.x;
            y = point.y;
        }
        ends += Big(static_cast<std::uint32_t>(flags.size() - 1), 2);
    }
    std::string bytes = Big(static_cast<std::uint32_t>(glyph.contours.size()), 2) + Big(0, 4) +
                        Big(1000, 2) + Big(1000, 2) + ends + Big(0, 2) + flags + xs + ys;
    bytes.resize((bytes.size() + 3) / 4 * 4);
    return bytes;
}

/// All tables that an interpreter needs, each of a length that is a multiple of four.
inline TestTables MakeTables(const std::vector<TestGlyph>& glyphs) {
    std::string glyf;
    std::string loca = Big(0, 4);
    std::string hmtx;
    for (const TestGlyph& glyph : glyphs) {
        glyf += EncodeGlyph(glyph);
        loca += Big(static_cast<std::uint32_t>(glyf.size()), 4);
        hmtx += Big(static_cast<std::uint32_t>(glyph.advance), 2) + Big(0, 2);
    }
    const auto count = static_cast<std::uint32_t>(glyphs.size());
    const std::string head = Big(0x00010000, 4) + Big(0x00020080, 4) + Big(0, 4) +
                             Big(0x5F0F3CF5, 4) + Big(3, 2) + Big(kTestUnits, 2) +
                             std::string(16, '\0') + Big(0, 4) + Big(1000, 2) + Big(1000, 2) +
                             Big(0, 2) + Big(8, 2) + Big(2, 2) + Big(1, 2) + Big(0, 2) + Big(0, 2);
    const std::string hhea = Big(0x00010000, 4) + Big(800, 2) + Big(0xFF38, 2) + Big(0, 2) +
                             Big(1000, 2) + std::string(22, '\0') + Big(count, 2);
    const std::string maxp = Big(0x00010000, 4) + Big(count, 2) + Big(100, 2) + Big(10, 2) +
                             Big(0, 2) + Big(0, 2) + Big(2, 2) + std::string(16, '\0');
    return {{"head", head}, {"hhea", hhea}, {"maxp", maxp},
            {"hmtx", hmtx}, {"loca", loca}, {"glyf", glyf}};
}

/// The data of a font. Without any the pointer is null.
class FakeFontData : public TObject<GRAPHICS::IFontData> {
public:
    explicit FakeFontData(std::string data) : bytes(std::move(data)) {}

    const std::uint8_t* GetData() const override {
        return bytes.empty() ? nullptr : reinterpret_cast<const std::uint8_t*>(bytes.data());
    }

    std::int32_t GetSize() const override { return static_cast<std::int32_t>(bytes.size()); }

    std::string bytes;
};

using TestEncoding = std::map<std::int32_t, std::string>;

inline void PlayEncoding(const TestEncoding& encoding, GRAPHICS::IEncodingFunctor& functor) {
    for (const auto& [code, name] : encoding) {
        functor(code, name.c_str());
    }
}

class FakeType1 : public TObject<GRAPHICS::IType1Ancillary> {
public:
    TestEncoding encoding;

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        PlayEncoding(encoding, functor);
    }
};

class FakeTrueType : public TObject<GRAPHICS::IT42Ancillary> {
public:
    std::vector<TestGlyph> glyphs = TestGlyphs();
    TestTables tables = MakeTables(glyphs);
    TestEncoding encoding;
    std::int16_t locaFormat = 1;

    std::uint32_t GetGlyphCount() const override {
        return static_cast<std::uint32_t>(glyphs.size());
    }

    std::int16_t GetLocaFormat() const override { return locaFormat; }

    std::int32_t GetUnitsPerEm() const override { return kTestUnits; }

    void EnumerateTables(GRAPHICS::ITableFunctor& functor) const override {
        for (const auto& [tag, bytes] : tables) {
            FourCC code = 0;
            for (const char c : tag) {
                code = (code << 8U) | static_cast<unsigned char>(c);
            }
            if (!functor(code, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                         static_cast<std::uint32_t>(bytes.size()))) {
                return;
            }
        }
    }

    void EnumerateGlyphs(GRAPHICS::IGlyphFunctor& functor) const override {
        std::uint16_t index = 0;
        for (const TestGlyph& glyph : glyphs) {
            const FakeGlyphRecording recording(glyph);
            functor(glyph.name.c_str(), static_cast<std::int32_t>(glyph.name.size()), index++,
                    &recording);
        }
    }

    void EnumerateGlyphNames(GRAPHICS::IGlyphNameFunctor& functor) const override {
        for (std::size_t i = 1; i < glyphs.size(); ++i) {
            functor(glyphs[i].name.c_str(), static_cast<std::uint16_t>(i));
        }
    }

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        PlayEncoding(encoding, functor);
    }
};

/// A font whose answers are its fields.
class FakeFont : public TObject<GRAPHICS::IFontPackageHandler> {
public:
    GRAPHICS::TFontType type = GRAPHICS::TFontType::kTrueType;
    GRAPHICS::TEncoding encoding = GRAPHICS::TEncoding::kCustom;
    bool embedded = true;
    bool bold = false;
    float stem = 0;
    std::string name = "Test";
    std::string notice;
    std::string version;
    std::vector<float> matrix;

    GRAPHICS::TFontType GetFontType() const override { return type; }

    GRAPHICS::TEncoding GetCIDEncoding() const override { return encoding; }

    bool IsEmbedded() const override { return embedded; }

    bool ReEncodeText(const void* /*text*/, std::int32_t /*length*/, std::uint8_t* /*codes*/,
                      std::int32_t* /*codeLength*/) const override {
        return false;
    }

    bool GetAdvances(const void* /*text*/, std::int32_t /*length*/, float* /*w0*/, float* /*w1*/,
                     std::int32_t* /*count*/) const override {
        return false;
    }

    std::int32_t GetSpaceCharCode() const override { return 32; }

    bool Less(const IFontPackageHandler& other) const override { return this < &other; }

    const char* GetName() const override { return name.c_str(); }

    const GRAPHICS::EncodingDifference* GetEncodingDifferences(std::int32_t& count) const override {
        count = 0;
        return nullptr;
    }

    GRAPHICS::TEncoding GetEncoding() const override { return encoding; }

    const float* GetFontMatrix() const override { return matrix.empty() ? nullptr : matrix.data(); }

    const char* GetFamilyName() const override { return "Test (Family)"; }

    const char* GetNoticeString() const override { return notice.c_str(); }

    const char* GetVersionString() const override { return version.c_str(); }

    float GetItalicAngle() const override { return -12.5F; }

    bool IsFixedPitch() const override { return false; }

    float GetUnderlinePosition() const override { return -100; }

    float GetUnderlineThickness() const override { return 50; }

    GRAPHICS::FontBox GetFontBBox() const override { return {0, 0, 1000, 800}; }

    std::int32_t GetGlyphCount() const override { return 4; }

    bool IsBold() const override { return bold; }

    float GetHorizontalStemWidth() const override { return stem; }

    float GetVerticalStemWidth() const override { return 0; }
};

inline TInterfacePtr<FakeFont> TrueTypeFont(const TestEncoding& encoding) {
    auto font = MakeObject<FakeFont>();
    const auto program = MakeObject<FakeTrueType>();
    program->encoding = encoding;
    font->Aggregate(program.Get(), GRAPHICS::IID_IT42ANCILLARY);
    font->Aggregate(MakeObject<FakeFontData>(MakeSfnt(program->tables)).Get(),
                    GRAPHICS::IID_IFONTDATA);
    return font;
}

inline TInterfacePtr<FakeFont> Type1Font(const std::string& name, const std::string& program,
                                         const TestEncoding& encoding) {
    auto font = MakeObject<FakeFont>();
    font->type = GRAPHICS::TFontType::kType1;
    font->name = name;
    font->embedded = !program.empty();
    const auto ancillary = MakeObject<FakeType1>();
    ancillary->encoding = encoding;
    font->Aggregate(ancillary.Get(), GRAPHICS::IID_ITYPE1ANCILLARY);
    if (!program.empty()) {
        font->Aggregate(MakeObject<FakeFontData>(program).Get(), GRAPHICS::IID_IFONTDATA);
    }
    return font;
}

/// A packet, a factory with a memory provider, and a clear log.
class FontBuilderFixture : public ::testing::Test {
protected:
    FontBuilderFixture() {
        factory.Offer<MemoryProvider>(IO::IID_IDATAPROVIDER);
        RecordingLogger::Get().Clear();
    }

    static std::string Messages() { return RecordingLogger::Get().Messages(); }

    FakeFactory factory;
    MemoryProvider packet;
};

}  // namespace VANTIX::TEST
