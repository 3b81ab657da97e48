// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>

#include "core/fonts/ifontancillaries.h"
#include "host/fonts/type1program.h"

namespace VANTIX::HOST {
namespace {

/// The bytes of a program.
class Type1Data final : public TObject<GRAPHICS::IFontData> {
public:
    explicit Type1Data(std::shared_ptr<Type1Program> program) : mProgram(std::move(program)) {}

    const std::uint8_t* GetData() const override { return mProgram->Data().data(); }

    std::int32_t GetSize() const override {
        return static_cast<std::int32_t>(mProgram->Data().size());
    }

private:
    std::shared_ptr<Type1Program> mProgram;
};

/// A list of names at codes, its own copy.
class Type1Encoding final : public TObject<GRAPHICS::IType1Ancillary> {
public:
    void Add(std::int32_t code, std::string name) { mNames.emplace_back(code, std::move(name)); }

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        for (const auto& [code, name] : mNames) {
            if (!functor(code, name.c_str())) {
                return;
            }
        }
    }

private:
    std::vector<std::pair<std::int32_t, std::string>> mNames;
};

class Type1Font final : public SimpleFont {
public:
    Type1Font(const std::shared_ptr<Type1Program>& program, SimpleFontDescription description)
        : SimpleFont(GRAPHICS::TFontType::kType1, std::move(description)),
          mGlyphCount(program->GlyphCount()),
          mMatrix(HandlerMatrixOf(program->Matrix())) {
        TakeWidths(*program);
        Aggregate(MakeObject<Type1Data>(program).Get(), GRAPHICS::IID_IFONTDATA);
        const auto encoding = MakeObject<Type1Encoding>();
        for (std::size_t code = 0; code < kSimpleCodes; ++code) {
            const std::string& name = Description().encoding.at(code);
            if (name != program->Encoding().at(code)) {
                encoding->Add(static_cast<std::int32_t>(code), name.empty() ? ".notdef" : name);
            }
        }
        Aggregate(encoding.Get(), GRAPHICS::IID_ITYPE1ANCILLARY);
    }

    bool IsEmbedded() const override { return true; }

    const float* GetFontMatrix() const override { return mMatrix.data(); }

    std::int32_t GetGlyphCount() const override { return mGlyphCount; }

private:
    std::int32_t mGlyphCount;
    HandlerMatrix mMatrix;
};

/// The widths of an interpreter's font by the names that a description has at their codes.
class ResidentProgram final : public SimpleProgram {
public:
    ResidentProgram(const SimpleFontDescription& description,
                    const std::array<float, kSimpleCodes>& widths)
        : mDescription(description), mWidths(widths) {}

    [[nodiscard]] float WidthOf(std::string_view glyph) const override {
        const auto& names = mDescription.encoding;
        const auto* const found = std::find(names.begin(), names.end(), glyph);
        return found == names.end() ? -1.0F
                                    : mWidths.at(static_cast<std::size_t>(found - names.begin()));
    }

    [[nodiscard]] bool HasOutline(std::string_view glyph) const override {
        return !glyph.empty() && glyph != "space";
    }

private:
    const SimpleFontDescription& mDescription;
    const std::array<float, kSimpleCodes>& mWidths;
};

class ResidentFont final : public SimpleFont {
public:
    ResidentFont(SimpleFontDescription description, bool reEncoded,
                 const std::array<float, kSimpleCodes>& widths)
        : SimpleFont(GRAPHICS::TFontType::kType1, std::move(description)), mReEncoded(reEncoded) {
        TakeWidths(ResidentProgram(Description(), widths));
        const auto encoding = MakeObject<Type1Encoding>();
        for (std::size_t code = 0; code < kSimpleCodes; ++code) {
            const std::string& name = Description().encoding.at(code);
            if (reEncoded && !name.empty()) {
                encoding->Add(static_cast<std::int32_t>(code), name);
            }
        }
        Aggregate(encoding.Get(), GRAPHICS::IID_ITYPE1ANCILLARY);
    }

    bool IsEmbedded() const override { return false; }

    const GRAPHICS::EncodingDifference* GetEncodingDifferences(std::int32_t& count) const override {
        if (mReEncoded) {
            return SimpleFont::GetEncodingDifferences(count);
        }
        count = 0;
        return nullptr;
    }

    const float* GetFontMatrix() const override { return kMatrix.data(); }

    std::int32_t GetGlyphCount() const override {
        std::int32_t count = 0;
        SimpleFont::GetEncodingDifferences(count);
        return count;
    }

private:
    static constexpr HandlerMatrix kMatrix{0.001F, 0, 0, 0.001F, 0, 0};

    bool mReEncoded;
};

}  // namespace

TInterfacePtr<SimpleFont> MakeType1Font(const std::shared_ptr<Type1Program>& program,
                                        SimpleFontDescription description) {
    return MakeObject<Type1Font>(program, Sanitised(std::move(description)));
}

TInterfacePtr<SimpleFont> MakeResidentFont(SimpleFontDescription description, bool reEncoded,
                                           const std::array<float, kSimpleCodes>& widths) {
    return MakeObject<ResidentFont>(Sanitised(std::move(description)), reEncoded, widths);
}

}  // namespace VANTIX::HOST
