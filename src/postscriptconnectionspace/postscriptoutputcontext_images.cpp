// SPDX-License-Identifier: MIT
// Image dictionaries (PostScript Language Reference, 4.10.5), whose data follow in the same stream.
#include "postscriptconnectionspace/postscriptoutputcontext.h"

namespace VANTIX::PS {

std::string PostScriptOutputContext::DecodeFilterNames(std::string_view separator) const {
    std::string names;
    const IO::IOutputFilterStack* filters = DataFilters();
    const std::int32_t count = filters == nullptr ? 0 : filters->GetFilterCount();
    for (std::int32_t i = 0; i < count; ++i) {
        const char* name = filters->GetFilterName(i);
        if (name != nullptr && *name != 0) {
            names.append(name).append(separator);
        }
    }
    return names;
}

std::string PostScriptOutputContext::ReadingExpression() const {
    return "currentfile " + DecodeFilterNames(" filter ");
}

std::string_view PostScriptOutputContext::ColourText(const char* colour, std::int32_t length) {
    const bool hasColour = colour != nullptr && length > 0;
    return hasColour ? std::string_view(colour, static_cast<std::size_t>(length))
                     : std::string_view();
}

void PostScriptOutputContext::AppendImageDictionary(TextBuffer& text, std::int32_t width,
                                                    std::int32_t height,
                                                    std::int32_t bitsPerComponent,
                                                    std::string_view colour, const char* decode,
                                                    bool imageMask, std::string_view source) {
    if (!colour.empty()) {
        text.Append(colour);
        text.Append(imageMask ? " setcolor\n" : " setcolorspace\n");
    }
    text.Format(
        "<<\n/ImageType 1\n/Width %i\n/Height %i\n/BitsPerComponent %i\n/Decode %s\n"
        "/ImageMatrix [%i 0 0 %i 0 0]\n/DataSource ",
        width, height, bitsPerComponent, decode, width, height);
    text.Append(source);
    text.Append(imageMask ? "\n>>\nimagemask\n" : "\n>>\nimage\n");
}

void PostScriptOutputContext::WriteImageDictionary(std::int32_t width, std::int32_t height,
                                                   std::int32_t bitsPerComponent,
                                                   const char* colour, std::int32_t colourLength,
                                                   const char* decode, bool imageMask) {
    mText.Clear();
    AppendImageDictionary(mText, width, height, bitsPerComponent, ColourText(colour, colourLength),
                          decode, imageMask, ReadingExpression());
    WriteText(mText.View());
}

void PostScriptOutputContext::AssociateSoftMaskImage(std::int32_t image) {
    mText.Clear();
    mText.Format("\n[/_objdef {Image%i} /SMask {SoftMaskImage%i} /NI pdfmark\n", image, image);
    WriteText(mText.View());
}

}  // namespace VANTIX::PS
