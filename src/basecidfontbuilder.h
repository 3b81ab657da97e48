// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "basefontbuilder.h"

namespace VANTIX::PS {

/// Writes one entry of /Metrics2 for each call.
class BaseCIDVerticalMetricFunctor final : public GRAPHICS::IVerticalMetricFunctor {
public:
    explicit BaseCIDVerticalMetricFunctor(IPostScriptDataStream& stream) : mStream(stream) {}

    bool operator()(std::uint16_t cid, const float values[4]) override;

private:
    IPostScriptDataStream& mStream;
};

/// The character collection of a CID-keyed font, and the version of the font. Strings are borrowed
/// from the handler.
struct CIDFontIdentity {
    const char* registry = "Vantix";
    const char* ordering = "Identity";
    std::int32_t supplement = 0;
    float version = 0;
};

/// What the builders of CID-keyed fonts share: the entries of the CIDFont dictionary (PostScript
/// Language Reference, 5.11.3), and the composite font that selects its glyphs by CIDs of two bytes
/// (5.11.4).
class BaseCIDFontBuilder : public FontResourceBuilder {
public:
    bool Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
              IO::IPacketDataProvider& packet) override;
    /// Refused (logged).
    bool DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) override;

protected:
    explicit BaseCIDFontBuilder(TPSFontType type) : mType(type) {}

    virtual void WriteFontBBox() = 0;
    virtual void WriteAdditionalFontDictEntries() = 0;
    /// Six floats in the order a c b d e f, or null for a font without.
    [[nodiscard]] virtual const float* GetFontMatrix() const;

    /// "%%BeginResource" with the name of the composite font.
    void WriteBeginResource();
    /// The whole dictionary, which stays open. False for a type that is not known (logged).
    bool WriteCIDFontBody();
    /// Makes the composite font of the CIDFont.
    void WriteCompositeFont();
    void WriteBBox(float scale);
    /// Room for an entry of each glyph, no more than a dictionary has.
    [[nodiscard]] std::int32_t GlyphRoom() const;
    void WriteMatrix(const float* matrix);

    /// By the kind of the source; as it is without the interface.
    [[nodiscard]] CIDFontIdentity GetIdentity() const;
    [[nodiscard]] const GRAPHICS::ICIDKeyedCFFAncillary* CFFSource() const;
    [[nodiscard]] const GRAPHICS::ICIDKeyedT42Ancillary* TrueTypeSource() const;

private:
    bool WriteEnteriesCommonToAllCIDFonts();
    void WriteCIDSystemInfoDictEnteries();
    void WriteFontInfo();
    void WriteVerticalMetrics();

    [[nodiscard]] const char* CMapName() const { return mIsVertical ? "Identity-V" : "Identity-H"; }

    TPSFontType mType;
    bool mIsVertical = false;
};

}  // namespace VANTIX::PS
