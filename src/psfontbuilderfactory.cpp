// SPDX-License-Identifier: MIT
#include "psfontbuilderfactory.h"

#include <algorithm>
#include <iterator>

#include "cffbuilder.h"
#include "cidfonttype0builder.h"
#include "cidfonttype2builder.h"
#include "core/io/idictionary.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "core/object/tobject.h"
#include "t1fontbuilder.h"
#include "t3fontbuilder.h"
#include "t42fontbuilder.h"

namespace VANTIX::PS {
namespace {

using GRAPHICS::TFontType;
using BuilderPtr = TInterfacePtr<GRAPHICS::IFontBuilder>;
using Maker = BuilderPtr (*)(IClassFactory&);

constexpr const char* kModule = "src/psfontbuilderfactory";

BuilderPtr MakeType1(IClassFactory& factory) {
    return MakeObject<T1FontBuilder>(factory);
}

BuilderPtr MakeType42(IClassFactory& /*factory*/) {
    return MakeObject<T42FontBuilder>();
}

BuilderPtr MakeFontSet(IClassFactory& /*factory*/) {
    return MakeObject<CFFBuilder>();
}

BuilderPtr MakeCIDFontType0(IClassFactory& /*factory*/) {
    return MakeObject<CIDFontType0Builder>();
}

BuilderPtr MakeCIDFontType2(IClassFactory& /*factory*/) {
    return MakeObject<CIDFontType2Builder>();
}

BuilderPtr MakeType3(IClassFactory& /*factory*/) {
    return MakeObject<T3FontBuilder>();
}

/// What becomes of a kind of font that is asked for as a kind of PostScript font: a builder, maybe
/// with a notice, or a refusal in words.
struct Route {
    TFontType source;
    TPSFontType type;
    Maker make;
    const char* message;
};

constexpr Route kRoutes[] = {
    {TFontType::kType1, TPSFontType::kNone, MakeType1, nullptr},
    {TFontType::kType1, TPSFontType::kType1, MakeType1, nullptr},
    {TFontType::kCFF, TPSFontType::kNone, MakeFontSet, nullptr},
    {TFontType::kCFF, TPSFontType::kType1, MakeType1, nullptr},
    {TFontType::kCFF, TPSFontType::kFontSet, MakeFontSet, nullptr},
    {TFontType::kCFF, TPSFontType::kCIDKeyedFontSet, MakeFontSet, "Downloading a CIDKeyedCFF..."},
    {TFontType::kCFF, TPSFontType::kCIDFontType0, nullptr,
     "Welcome! you are chosen to download CFF font as CIDFontType0 into PS"},
    {TFontType::kCFF, TPSFontType::kCIDFontType1, nullptr,
     "Welcome! you are chosen to download CFF font as CIDFontType1 into PS"},
    {TFontType::kCFF, TPSFontType::kCIDFontType2, nullptr,
     "Welcome! you are chosen to download CFF font as CIDFontType2 into PS"},
    {TFontType::kType3, TPSFontType::kNone, MakeType3, nullptr},
    {TFontType::kType3, TPSFontType::kType3, MakeType3, nullptr},
    {TFontType::kCIDKeyedCFF, TPSFontType::kCIDFontType0, MakeCIDFontType0, nullptr},
    {TFontType::kCIDKeyedTrueType, TPSFontType::kNone, MakeCIDFontType2, nullptr},
    {TFontType::kCIDKeyedTrueType, TPSFontType::kCIDFontType0, MakeCIDFontType0, nullptr},
    {TFontType::kCIDKeyedTrueType, TPSFontType::kCIDFontType2, MakeCIDFontType2, nullptr},
    {TFontType::kTrueType, TPSFontType::kNone, MakeType42, nullptr},
    {TFontType::kTrueType, TPSFontType::kType1, MakeType1, nullptr},
    {TFontType::kTrueType, TPSFontType::kType42, MakeType42, nullptr},
    {TFontType::kTrueType, TPSFontType::kCIDFontType0, nullptr,
     "Welcome! you are chosen to implement true type font as CIDFontType0 into PS"},
};

/// The words for a kind of font that is asked for as anything else. With an end, the number of the
/// type stands between.
struct Refusal {
    TFontType source;
    const char* text;
    const char* end;
};

constexpr Refusal kRefusals[] = {
    {TFontType::kType1,
     "Who else in this world cares about converting Postcript Type 1 fonts to some other format?",
     nullptr},
    {TFontType::kCFF, "New download type ", " to embedd CFF font into PS"},
    {TFontType::kType3, "New download type ", " to embed Type 3 font into PS"},
    {TFontType::kCIDKeyedCFF, "We only supprt CIDType0 for CIDKeyedCFF fonts.", nullptr},
    {TFontType::kCIDKeyedTrueType, "New download type ", " to embedd True type font into PS"},
    {TFontType::kTrueType, "New download type ", " to embedd True type font into PS"},
};

void LogRefusal(const GRAPHICS::IFontPackageHandler& handler, TPSFontType type) {
    const TFontType source = handler.GetFontType();
    const auto* found = std::find_if(std::begin(kRefusals), std::end(kRefusals),
                                     [=](const Refusal& each) { return each.source == source; });
    if (found == std::end(kRefusals)) {
        LogError(kModule) << "Unknown font type " << static_cast<std::int32_t>(source)
                          << " of source font " << handler.GetName();
    } else if (found->end == nullptr) {
        LogError(kModule) << found->text;
    } else {
        LogError(kModule) << found->text << static_cast<std::int32_t>(type) << found->end;
    }
}

class PSFontBuilderFactory : public TObject<IPSFontBuilderFactory> {
public:
    GRAPHICS::IFontBuilder* CreatePSFontBuilder(IClassFactory& factory,
                                                GRAPHICS::IFontPackageHandler* handler,
                                                IO::IPacketDataProvider& packet, const char* name,
                                                TPSFontType type) override;
};

GRAPHICS::IFontBuilder* PSFontBuilderFactory::CreatePSFontBuilder(
    IClassFactory& factory, GRAPHICS::IFontPackageHandler* handler, IO::IPacketDataProvider& packet,
    const char* name, TPSFontType type) {
    if (handler == nullptr) {
        LogError(kModule) << "No font for a font builder.";
        return nullptr;
    }
    const TFontType source = handler->GetFontType();
    const auto* route =
        std::find_if(std::begin(kRoutes), std::end(kRoutes),
                     [=](const Route& each) { return each.source == source && each.type == type; });
    if (route == std::end(kRoutes)) {
        LogRefusal(*handler, type);
        return nullptr;
    }
    if (route->make == nullptr) {
        LogError(kModule) << route->message;
        return nullptr;
    }
    if (route->message != nullptr) {
        LogNotice(kModule) << route->message;
    }
    BuilderPtr builder = route->make(factory);
    for (const GUID& id : {IID_CLASSFACTORY, IO::IID_IPOSTSCRIPTPOLICYDICT}) {
        builder->Aggregate(FindInterface<IObject>(this, id), id);
    }
    return builder->Init(handler, name, packet) ? builder.Detach() : nullptr;
}

}  // namespace

IObject* CreatePSFontBuilderFactory() {
    return new PSFontBuilderFactory;
}

}  // namespace VANTIX::PS
