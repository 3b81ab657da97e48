// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "core/fonts/ifontbroker.h"
#include "core/fonts/ifontpackagehandler.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "support/fakegraphicsstate.h"

namespace VANTIX::TEST {

/// A font program of any bytes.
class ListedFontData : public TObject<GRAPHICS::IFontData> {
public:
    explicit ListedFontData(std::string bytes) : mBytes(std::move(bytes)) {}

    const std::uint8_t* GetData() const override {
        return static_cast<const std::uint8_t*>(static_cast<const void*>(mBytes.data()));
    }

    std::int32_t GetSize() const override { return static_cast<std::int32_t>(mBytes.size()); }

private:
    std::string mBytes;
};

class FakeCompositeInfo : public TObject<GRAPHICS::ICompositeFontInfo> {
public:
    explicit FakeCompositeInfo(bool isVertical) : mIsVertical(isVertical) {}

    bool IsVertical() const override { return mIsVertical; }

private:
    bool mIsVertical;
};

/// A font whose codes are those of the text, and the font object that offers it.
class ListedFont : public TObject<GRAPHICS::IFontPackageHandler> {
public:
    ListedFont(std::string fontName, GRAPHICS::TFontType fontType, bool isEmbedded)
        : name(std::move(fontName)), type(fontType), embedded(isEmbedded), mNumber(sNumber++) {}

    std::string name;
    GRAPHICS::TFontType type;
    bool embedded;
    GRAPHICS::TEncoding cidEncoding = GRAPHICS::TEncoding::kCustom;
    std::vector<GRAPHICS::EncodingDifference> differences;
    bool reEncodes = true;
    /// Of every text, in ems; none when empty.
    std::vector<std::pair<float, float>> advances;

    ListedFont& WithData(std::string bytes) {
        Aggregate(MakeObject<ListedFontData>(std::move(bytes)).Get(), GRAPHICS::IID_IFONTDATA);
        return *this;
    }

    ListedFont& AsComposite(bool isVertical = false) {
        Aggregate(MakeObject<FakeCompositeInfo>(isVertical).Get(),
                  GRAPHICS::IID_ICOMPOSITEFONTINFO);
        return *this;
    }

    Status QueryInterface(const GUID& id, void** out) override {
        if (id == GRAPHICS::IID_IFONTPACKAGEHANDLER) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        return TObject::QueryInterface(id, out);
    }

    GRAPHICS::TFontType GetFontType() const override { return type; }

    GRAPHICS::TEncoding GetCIDEncoding() const override { return cidEncoding; }

    bool IsEmbedded() const override { return embedded; }

    bool ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                      std::int32_t* codeLength) const override {
        std::copy_n(static_cast<const std::uint8_t*>(text), length, codes);
        *codeLength = length;
        return reEncodes;
    }

    bool GetAdvances(const void* /*text*/, std::int32_t /*length*/, float* w0, float* w1,
                     std::int32_t* count) const override {
        if (advances.empty() || std::cmp_greater(advances.size(), *count)) {
            return false;
        }
        for (const auto& [horizontal, vertical] : advances) {
            *w0++ = horizontal;
            *w1++ = vertical;
        }
        *count = static_cast<std::int32_t>(advances.size());
        return true;
    }

    std::int32_t GetSpaceCharCode() const override { return ' '; }

    bool Less(const IFontPackageHandler& other) const override {
        return mNumber < static_cast<const ListedFont&>(other).mNumber;
    }

    const char* GetName() const override { return name.c_str(); }

    const GRAPHICS::EncodingDifference* GetEncodingDifferences(std::int32_t& count) const override {
        count = static_cast<std::int32_t>(differences.size());
        return differences.empty() ? nullptr : differences.data();
    }

    GRAPHICS::TEncoding GetEncoding() const override { return GRAPHICS::TEncoding::kStandard; }

    const float* GetFontMatrix() const override { return nullptr; }

    const char* GetFamilyName() const override { return ""; }

    const char* GetNoticeString() const override { return ""; }

    const char* GetVersionString() const override { return ""; }

    float GetItalicAngle() const override { return 0; }

    bool IsFixedPitch() const override { return false; }

    float GetUnderlinePosition() const override { return 0; }

    float GetUnderlineThickness() const override { return 0; }

    GRAPHICS::FontBox GetFontBBox() const override { return {}; }

    std::int32_t GetGlyphCount() const override { return 0; }

    bool IsBold() const override { return false; }

    float GetHorizontalStemWidth() const override { return 0; }

    float GetVerticalStemWidth() const override { return 0; }

private:
    static inline int sNumber = 0;
    int mNumber;
};

/// Fonts that are found by their names; all are of one family.
class FakeFontBroker : public TObject<GRAPHICS::IFontBroker> {
public:
    /// Null stands for a font without a handler.
    std::vector<TInterfacePtr<ListedFont>> fonts;

    IObject* FindFont(const char* name, std::int32_t /*selector*/,
                      std::int32_t /*flags*/) override {
        for (const TInterfacePtr<ListedFont>& font : fonts) {
            if (!font || font->name == name) {
                return mFamily->Object(font.Get());
            }
        }
        return nullptr;
    }

    void EnumerateFontFamilies(GRAPHICS::IFamilyFunctor& functor) override {
        mFamily->fonts = &fonts;
        functor(mFamily.Get());
    }

private:
    class Family : public TObject<GRAPHICS::IFontFamily> {
    public:
        std::vector<TInterfacePtr<ListedFont>>* fonts = nullptr;

        std::int32_t GetFontCount() const override {
            return static_cast<std::int32_t>(fonts->size());
        }

        IObject* GetFont(std::int32_t index) const override {
            return Object(fonts->at(static_cast<std::size_t>(index)).Get());
        }

        IObject* Object(ListedFont* font) const {
            return font != nullptr ? static_cast<IObject*>(font) : mBare.Get();
        }

    private:
        class Bare : public TObject<IObject> {};

        TInterfacePtr<Bare> mBare = MakeObject<Bare>();
    };

    TInterfacePtr<Family> mFamily = MakeObject<Family>();
};

/// A state whose text parameters a test sets.
class FakeTextState : public FakeGraphicsState {
public:
    float charSpacing = 0;
    float wordSpacing = 0;
    float horizontalScaling = 1;
    float leading = 0;
    float fontSize = 10;
    std::string fontName = "Helvetica";
    TTextRendering rendering = TTextRendering::kFill;

    float GetCharSpacing() const override { return charSpacing; }

    float GetWordSpacing() const override { return wordSpacing; }

    float GetHorizontalScaling() const override { return horizontalScaling; }

    float GetTextLeading() const override { return leading; }

    const char* GetFontName() const override { return fontName.c_str(); }

    float GetFontSize() const override { return fontSize; }

    TTextRendering GetTextRendering() const override { return rendering; }
};

}  // namespace VANTIX::TEST
