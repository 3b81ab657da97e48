// SPDX-License-Identifier: MIT
// Image data in a tiling pattern (PostScript Language Reference, 3.13.2 and 4.9.2).
#include "postscriptconnectionspace/tilepatternpsoutputcontext.h"

#include <cctype>

namespace VANTIX::PS {

namespace {

/// What a reusable stream reads where no filter marks the end of the data.
constexpr const char* kUnfilteredStream =
    "<< /Filter /SubFileDecode /DecodeParms << /EODCount 0 /EODString (%%EndBinary) >> >>";

constexpr const char* kCreateDataArray =
    "/CreateDataArray\n {\n\t%s /imagefile exch def\n\tmark\n\t\t{\n"
    "\t\t\timagefile 16384 string readstring not { exit } if\n\t\t}loop\n\t]\n} cvx bind def\n";

}  // namespace

TilePatternPSOutputContext::TilePatternPSOutputContext(PostScriptStreamStack& streams,
                                                       IPostScriptDataStream& outer,
                                                       std::int32_t languageLevel,
                                                       std::uint32_t& lastImage, bool coloured)
    : PostScriptOutputContext(streams),
      mOuter(outer),
      mLanguageLevel(languageLevel),
      mImage(lastImage),
      mIsColoured(coloured) {}

IO::IOutputFilterStack* TilePatternPSOutputContext::DataFilters() const {
    return mIsCollecting
               ? FindInterface<IO::IOutputFilterStack>(&mOuter, IO::IID_IOUTPUTFILTERSTACK)
               : PostScriptOutputContext::DataFilters();
}

void TilePatternPSOutputContext::WriteOuter(const TextBuffer& text) {
    const std::string_view bytes = text.View();
    // Text is written as the bytes that it is.
    mOuter.WriteBytes(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                      static_cast<std::int32_t>(bytes.size()));
}

void TilePatternPSOutputContext::BeginResource() {
    ++mImage;
    mHasResource = true;
    TextBuffer text(0);
    if (HasStreams()) {
        const std::string names = DecodeFilterNames("");
        const std::string filters =
            names.empty() ? kUnfilteredStream : "<< /Filter [" + names + "] >>";
        text.Format("/ImageData%u currentfile %s /ReusableStreamDecode filter\n", mImage,
                    filters.c_str());
    } else {
        text.Format(kCreateDataArray, ReadingExpression().c_str());
        text.Format("/ImageData%u CreateDataArray\n", mImage);
    }
    WriteOuter(text);
}

void TilePatternPSOutputContext::EndResource() {
    if (!mHasResource) {
        return;
    }
    mHasResource = false;
    const char* end = DecodeFilterNames("").empty() ? "\n%%EndBinary" : "";
    TextBuffer text(0);
    if (HasStreams()) {
        text.Format("%s\ndef\t\t\t%%Stack: /ImageData%u fileobj => ---\n", end, mImage);
    } else {
        text.Format("\ndef\t\t\t%%Stack: /ImageData%s array object => ---\n", end);
    }
    WriteOuter(text);
    WriteText(mDictionary.View());
    mDictionary.Clear();
}

void TilePatternPSOutputContext::BeginImageData() {
    mIsCollecting = IsOnBase();
    mDictionary.Clear();
}

void TilePatternPSOutputContext::EndImageData() {
    if (!mIsCollecting) {
        return;
    }
    EndResource();
    mIsCollecting = false;
}

void TilePatternPSOutputContext::WriteImageDictionary(std::int32_t width, std::int32_t height,
                                                      std::int32_t bitsPerComponent,
                                                      const char* colour, std::int32_t colourLength,
                                                      const char* decode, bool imageMask) {
    if (!mIsCollecting) {
        return PostScriptOutputContext::WriteImageDictionary(
            width, height, bitsPerComponent, colour, colourLength, decode, imageMask);
    }
    // Where no image is written, an empty resource would read the document as its data.
    EndResource();
    BeginResource();
    const std::string name = "ImageData" + std::to_string(mImage);
    const std::string_view space = ColourText(colour, mIsColoured ? colourLength : 0);
    if (HasStreams()) {
        mDictionary.Format("%s 0 setfileposition\n", name.c_str());
    } else {
        mDictionary.Append("userdict /iL 0 put");
        if (!space.empty() && std::isalnum(static_cast<unsigned char>(space.front())) != 0) {
            mDictionary.Append("\n");
        }
    }
    AppendImageDictionary(mDictionary, width, height, bitsPerComponent, space, decode, imageMask,
                          HasStreams() ? name : "{" + name + " iL get /iL iL 1 add store} bind");
}

void TilePatternPSOutputContext::AssociateSoftMaskImage(std::int32_t image) {
    if (!mIsCollecting) {
        return PostScriptOutputContext::AssociateSoftMaskImage(image);
    }
    EndResource();
    PostScriptOutputContext::AssociateSoftMaskImage(image);
}

}  // namespace VANTIX::PS
