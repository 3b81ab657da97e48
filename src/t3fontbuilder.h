// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "basefontbuilder.h"
#include "core/graphics/iconnectionspace.h"
#include "core/io/idictionary.h"
#include "core/object/iclassfactory.h"

namespace VANTIX::PS {

class T3GlyphPSConnectionSpace;

/// Writes a font whose glyphs the host draws as a Type 3 font (PostScript Language Reference, 5.7):
/// each glyph is recorded as a procedure. Before `BuildFont` the class factory
/// (`IID_CLASSFACTORY`), the policy (`IID_IPOSTSCRIPTPOLICYDICT`) and, for text in glyphs, the
/// connection space of the page (`CLSID_POSTSCRIPTCONNECTIONSPACE`) are aggregated.
class T3FontBuilder : public BaseFontBuilder {
public:
    T3FontBuilder() : BaseFontBuilder(FontDictionaryType::kType3) {}

    bool BuildFont() override;
    bool DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) override;

    /// Writes the procedure of one glyph; parameters are those of `IT3GlyphProcFunctor`. A glyph
    /// that cannot be recorded is blank, one whose name would break the dictionary left out.
    void WriteGlyphProcsDictEntry(const char* name, std::int32_t nameLength,
                                  const GRAPHICS::IConnectionSpace* glyph, const float box[4],
                                  float width, bool coloured);

protected:
    bool WriteTypeSpecificEntries() override;
    bool SetEncodingDifferences(GRAPHICS::IFontPackageHandler* handler) override;

private:
    bool FindServices();
    void WriteFontComments();
    bool WriteGlyphProcs();
    void WriteRecording(const GRAPHICS::IConnectionSpace& glyph, bool coloured);

    IClassFactory* mFactory = nullptr;  // of the aggregation
    TInterfacePtr<IO::IDictionary> mPolicy;
};

}  // namespace VANTIX::PS
