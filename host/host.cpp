// SPDX-License-Identifier: MIT
#include "host/host.h"

#include <utility>

#include "core/io/ioutputfilterstack.h"
#include "core/registry/irunenvironment.h"
#include "host/color/functionfactory.h"
#include "host/graphics/baseconnectionspace.h"
#include "host/graphics/channeldata.h"
#include "host/graphics/channeldesc.h"
#include "host/graphics/graphicsstatestack.h"
#include "host/graphics/rastercomponent.h"
#include "host/graphics/swizzleservices.h"
#include "host/io/memoryprovider.h"
#include "host/io/outputfilterstack.h"
#include "host/io/packetproviderfactory.h"
#include "host/object/classfactory.h"
#include "host/object/pluginlibrary.h"
#include "host/support/dictionary.h"
#include "host/support/keyedproperties.h"
#include "host/support/runenvironment.h"

namespace VANTIX::HOST {

struct Host::Parts {
    TInterfacePtr<ColorSpaceFactory> colorSpaces = MakeObject<ColorSpaceFactory>();
    TInterfacePtr<ClassFactory> factory = MakeObject<ClassFactory>();
    std::unique_ptr<PluginLibrary> plugin;

    template <class T>
    void Offer(const GUID& classId) const {
        factory->Enter(classId, [] { return new T; });
    }

    Parts() {
        Offer<OutputFilterStack>(IO::IID_IOUTPUTFILTERSTACK);
        Offer<MemoryProvider>(IO::IID_IDATAPROVIDER);
        Offer<PacketProviderFactory>(IO::CLSID_PACKETDATAPROVIDERFACTORY);
        Offer<Dictionary>(IO::IID_IDICTIONARY);
        Offer<KeyedProperties>(IO::CLSID_KEYEDPROPERTIES);
        Offer<GraphicsStateStack>(GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK);
        Offer<RasterComponent>(GRAPHICS::CLSID_RASTERCOMPONENT);
        Offer<ChannelData>(GRAPHICS::CLSID_CHANNELDATA);
        Offer<ChannelDesc>(GRAPHICS::CLSID_CHANNELDESC);
        Offer<SwizzleServices>(GRAPHICS::CLSID_SWIZZLESERVICES);
        Offer<FunctionFactory>(COLOR::CLSID_COLORFUNCTIONFACTORY);
        factory->EnterShared(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY, colorSpaces);
        // The factory's own gray, since profiles may be set behind the device spaces at any time.
        factory->Enter(GRAPHICS::IID_IBASECONNECTIONSPACE, [spaces = colorSpaces] {
            return new BaseConnectionSpace(spaces->DeviceSpace("gray"_cc));
        });
    }
};

Host::Host() : mParts(std::make_unique<Parts>()) {}

Host::~Host() = default;

void Host::SetRunEnvironment(std::uint64_t seed, std::int64_t time) {
    mParts->factory->EnterShared(COREREGISTRY::CLSID_RUNENVIRONMENT,
                                 MakeObject<RunEnvironment>(seed, time));
}

bool Host::LoadPlugin(const std::string& path, std::string& error) {
    if (mParts->plugin) {
        error = "a plug-in is loaded already";
        return false;
    }
    mParts->plugin = PluginLibrary::Load(path, *mParts->factory, error);
    return mParts->plugin != nullptr;
}

std::string Host::FindPlugin() {
    return FindPluginFile();
}

IClassFactory& Host::Factory() {
    return *mParts->factory;
}

ColorSpaceFactory& Host::ColorSpaces() {
    return *mParts->colorSpaces;
}

TInterfacePtr<IO::IDictionary> Host::CreatePolicy() {
    return CreateObject<IO::IDictionary>(mParts->factory.Get(), IO::IID_IDICTIONARY);
}

TInterfacePtr<GRAPHICS::IGraphicExporter> Host::CreateExporter() {
    if (!mParts->plugin) {
        return nullptr;
    }
    TInterfacePtr<IObject> exporter =
        mParts->plugin->CreateFirst(COREREGISTRY::CATID_GRAPHICEXPORTERS, *mParts->factory);
    // What a plug-in lists in the category of exporters is one.
    return TInterfacePtr<GRAPHICS::IGraphicExporter>::Adopt(
        static_cast<GRAPHICS::IGraphicExporter*>(exporter.Detach()));
}

}  // namespace VANTIX::HOST
