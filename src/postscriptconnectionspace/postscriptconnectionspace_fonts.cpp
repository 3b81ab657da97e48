// SPDX-License-Identifier: MIT
// Fonts in the document (PostScript Language Reference, chapter 5).
#include <algorithm>

#include "core/io/idictionary.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/psfontpacketsbuilder.h"
#include "sfntbuilder.h"

namespace VANTIX::PS {

namespace {

using GRAPHICS::TFontType;

constexpr const char* kModule = "src/postscriptconnectionspace";

/// A kind of font program, and the kinds of fonts that it becomes.
struct DownloadKind {
    TFontType source;
    TPSFontType level2;
    TPSFontType level3;
    /// Where the interpreter takes TrueType data.
    TPSFontType asTrueType = TPSFontType::kNone;
};

constexpr DownloadKind kDownloadKinds[] = {
    {TFontType::kType1, TPSFontType::kType1, TPSFontType::kType1},
    {TFontType::kCFF, TPSFontType::kType1, TPSFontType::kFontSet},
    {TFontType::kType3, TPSFontType::kType3, TPSFontType::kType3},
    {TFontType::kCIDKeyedCFF, TPSFontType::kCIDFontType0, TPSFontType::kCIDFontType0},
    {TFontType::kCIDKeyedTrueType, TPSFontType::kCIDFontType0, TPSFontType::kCIDFontType0,
     TPSFontType::kCIDFontType2},
    {TFontType::kTrueType, TPSFontType::kType1, TPSFontType::kType1, TPSFontType::kType42},
};

/// Whether the TrueType data of a font can go out as they are.
bool IsUsableTrueType(GRAPHICS::IFontPackageHandler& handler) {
    constexpr std::uint32_t kDataLimit = 65535;
    constexpr std::uint32_t kLocaLimit = 65532;
    const SFNTStringsBuilder* strings = GetSFNTStringsBuilder(handler);
    if (strings == nullptr) {
        return false;
    }
    const std::uint32_t loca = strings->GetLocaLength();
    if (strings->GetDataSize() < kDataLimit && loca > 0 && loca <= kLocaLimit) {
        return true;
    }
    LogNotice(kModule) << handler.GetName()
                       << " font is breaching the 64KB limit of true type tables! Time to "
                          "implement [1] font subsetting + [2] broken true type fonts?";
    return false;
}

}  // namespace

TPSFontType PostScriptConnectionSpace::GetPSFontType(GRAPHICS::IFontPackageHandler& handler,
                                                     std::int32_t level, bool trueTypeDownload) {
    if (level == 1) {
        LogNotice(kModule)
            << "We don't support PostScript output for level 1 RIPs, so defaulting to level 2!";
        level = 2;
    }
    if (level != 2 && level != 3) {
        LogError(kModule) << "Bulletin: New PostScript Level is evolved!";
        return TPSFontType::kNone;
    }
    const TFontType source = handler.GetFontType();
    const auto* const kind =
        std::find_if(std::begin(kDownloadKinds), std::end(kDownloadKinds),
                     [source](const DownloadKind& entry) { return entry.source == source; });
    if (kind == std::end(kDownloadKinds)) {
        LogError(kModule) << "Unsupported font type " << static_cast<std::int32_t>(source)
                          << " for building!";
        return TPSFontType::kNone;
    }
    if (kind->asTrueType != TPSFontType::kNone && trueTypeDownload && IsUsableTrueType(handler)) {
        return kind->asTrueType;
    }
    return level == 2 ? kind->level2 : kind->level3;
}

bool PostScriptConnectionSpace::DownloadFonts(const GRAPHICS::IConnectionSpace* host) {
    const auto* found = FindInterface<GRAPHICS::IFontBroker>(host, GRAPHICS::IID_IFONTBROKER);
    // To be found in a constant space does not make the broker constant.
    auto* broker = const_cast<GRAPHICS::IFontBroker*>(found);
    if (broker == nullptr) {
        LogError(kModule) << "No font broker found while downloading the fonts!";
        return false;
    }
    if (!mFonts.brokers.try_emplace(broker, broker).second) {
        return true;
    }
    const auto maker = CreateObject<IPSFontBuilderFactory>(mFactory, CLSID_PSFONTBUILDERFACTORY);
    IPostScriptDataStream* document = GetBaseStream();
    if (!maker || document == nullptr) {
        LogError(kModule) << "fontBuilderFactory did not create a font builder.";
        return false;
    }
    maker->Aggregate(mFactory, IID_CLASSFACTORY);
    maker->Aggregate(FindInterface<IO::IDictionary>(this, IO::IID_IPOSTSCRIPTPOLICYDICT),
                     IO::IID_IPOSTSCRIPTPOLICYDICT);
    PSFontPacketsBuilder packets(*this, mFonts, *maker, *mFactory);
    broker->EnumerateFontFamilies(packets);
    packets.BuildDeferred();
    packets.CopyTo(*document);
    return true;
}

}  // namespace VANTIX::PS
