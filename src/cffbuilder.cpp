// SPDX-License-Identifier: MIT
#include "cffbuilder.h"

#include "core/io/idictionary.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/policykeys.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/cffbuilder";

}  // namespace

bool CFFBuilder::Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
                      IO::IPacketDataProvider& packet) {
    return Begin(handler, name, packet,
                 {kModule, "Initializing CFFBuilder with NULL canonical font?",
                  "Unable to create Postscript data stream."});
}

bool CFFBuilder::BuildFont() {
    if (GetStream() == nullptr) {
        LogError(kModule) << "FontStream is required to output the CFF Package.";
        return false;
    }
    if (Handler()->GetFontType() != GRAPHICS::TFontType::kCFF) {
        LogError(kModule) << "Unimplemenetd, If really needed implement building the CFF Package "
                             "from the source pacakgehandler.";
        return false;
    }
    const auto* data = FindInterface<GRAPHICS::IFontData>(Handler(), GRAPHICS::IID_IFONTDATA);
    const bool filled = data != nullptr && data->GetData() != nullptr && data->GetSize() > 0;
    if (filled) {
        WriteFontSet({data->GetData(), static_cast<std::size_t>(data->GetSize())});
    } else if (Handler()->IsEmbedded()) {
        if (data == nullptr) {
            LogError(kModule) << "IID_IFONTDATA not found for an embedded CFF Type 2 font "
                              << Handler()->GetName();
        } else {
            LogError(kModule) << "Data is not avaliable in FontData for an embedded font!";
        }
        return false;
    }
    return DefineFont(Handler(), GetFontName());
}

void CFFBuilder::WriteFontSet(std::span<const std::uint8_t> data) {
    const auto size = static_cast<std::int32_t>(data.size());
    const std::string name = EscapeFontName(Handler()->GetName());
    Stream() << "%!PS-Adobe-3.0 Resource-FontSet\n"
             << "%%DocumentNeedResources: ProcSet (FontSetInit)\n"
             << "%%Title: (FontSet/" << name.c_str() << ")\n"
             << "%%Version: " << OneLine(Handler()->GetVersionString()).c_str() << "\n"
             << "%%EndComments\n"
             << "%%IncludeResource: ProcSet (FontSetInit)\n"
             << "%%BeginResource: FontSet (" << name.c_str() << ")\n"
             << "/FontSetInit /ProcSet findresource begin\n";
    Print("%%%%BeginData: %d Binary Bytes\n", size);
    Stream().WriteString(name.c_str());
    Print(" cvn %d StartData\n", size);
    Stream().WriteBytes(data.data(), size) << "\n%%EndData\n%%EndResource\n";
    const auto* policy = FindInterface<IO::IDictionary>(this, IO::IID_IPOSTSCRIPTPOLICYDICT);
    bool isEndOmitted = false;
    if (policy != nullptr) {
        policy->GetBool(POLICY::kNoEndOfFontSet, isEndOmitted);
    }
    if (!isEndOmitted) {
        Stream() << "%%EOF\n";
    }
}

bool CFFBuilder::DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) {
    if (GetStream() == nullptr || handler == nullptr || name == nullptr) {
        return false;
    }
    const GRAPHICS::TFontType type = handler->GetFontType();
    if (type != GRAPHICS::TFontType::kCFF) {
        LogError(kModule) << "Un-handled font type " << static_cast<std::int32_t>(type)
                          << " to redefine in CFFBuilder";
        return false;
    }
    const auto* font = FindInterface<GRAPHICS::ICFFAncillary>(handler, GRAPHICS::IID_ICFFANCILLARY);
    if (font == nullptr) {
        return false;
    }
    BeginRedefinition(handler->GetName(), name);
    Stream() << "/Encoding 256 array 0 1 255 {1 index exch /.notdef put} for\n";
    BaseFontEncodingFunctor functor(Stream());
    font->EnumerateEncoding(functor);
    Stream() << "readonly def\n";
    EndRedefinition(name);
    return true;
}

}  // namespace VANTIX::PS
