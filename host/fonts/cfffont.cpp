// SPDX-License-Identifier: MIT
#include <utility>

#include "host/fonts/cffprogram.h"
#include "host/fonts/cffsubroutines.h"

namespace VANTIX::HOST {
namespace {

class CffData final : public TObject<GRAPHICS::IFontData> {
public:
    explicit CffData(std::shared_ptr<CffProgram> program) : mProgram(std::move(program)) {}

    const std::uint8_t* GetData() const override { return mProgram->Data().data(); }

    std::int32_t GetSize() const override {
        return static_cast<std::int32_t>(mProgram->Data().size());
    }

private:
    std::shared_ptr<CffProgram> mProgram;
};

/// Hands glyphs on by their names.
class NamedGlyphs final : public CffGlyphFunctor {
public:
    NamedGlyphs(const CffProgram& program, GRAPHICS::ICharStringFunctor& functor)
        : mProgram(program), mFunctor(functor) {}

    bool operator()(const CffGlyph& glyph) override {
        const std::string name = mProgram.NameOf(glyph.index);
        return name.empty() || mFunctor(name.c_str(), glyph.charString);
    }

private:
    const CffProgram& mProgram;
    GRAPHICS::ICharStringFunctor& mFunctor;
};

class CffAncillary final : public CffSubroutines<GRAPHICS::ICFFAncillary> {
public:
    /// The font owns this; so it is not counted.
    CffAncillary(std::shared_ptr<CffProgram> program, const SimpleFont& font)
        : CffSubroutines(std::move(program)), mFont(font) {}

    void EnumerateCharStrings(GRAPHICS::ICharStringFunctor& functor) const override {
        NamedGlyphs named(Program(), functor);
        Program().EnumerateGlyphs(false, named);
    }

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        std::int32_t count = 0;
        const GRAPHICS::EncodingDifference* names = mFont.GetEncodingDifferences(count);
        for (std::int32_t i = 0; i < count && functor(names[i].code, names[i].name); ++i) {
        }
    }

private:
    const SimpleFont& mFont;
};

class CffFont final : public SimpleFont {
public:
    CffFont(std::shared_ptr<CffProgram> program, SimpleFontDescription description)
        : SimpleFont(GRAPHICS::TFontType::kCFF, std::move(description)),
          mProgram(std::move(program)),
          mMatrix(HandlerMatrixOf(mProgram->Matrix())) {
        TakeWidths(*mProgram);
        Aggregate(MakeObject<CffData>(mProgram).Get(), GRAPHICS::IID_IFONTDATA);
        Aggregate(MakeObject<CffAncillary>(mProgram, *this).Get(), GRAPHICS::IID_ICFFANCILLARY);
    }

    bool IsEmbedded() const override { return true; }

    const float* GetFontMatrix() const override { return mMatrix.data(); }

    std::int32_t GetGlyphCount() const override { return mProgram->WrittenCount(); }

private:
    std::shared_ptr<CffProgram> mProgram;
    HandlerMatrix mMatrix;
};

}  // namespace

TInterfacePtr<SimpleFont> MakeCFFFont(std::shared_ptr<CffProgram> program,
                                      SimpleFontDescription description) {
    return MakeObject<CffFont>(std::move(program), Sanitised(std::move(description)));
}

}  // namespace VANTIX::HOST
