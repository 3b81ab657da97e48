// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/psfontpacketsbuilder.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <utility>

#include "basefontbuilder.h"
#include "core/fonts/ifontancillaries.h"
#include "core/graphics/iconnectionspace.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "platform/randomsource.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "wpacketdataprovider.h"

namespace VANTIX::PS {

namespace {

using GRAPHICS::IFontBuilder;
using GRAPHICS::IFontPackageHandler;

constexpr const char* kModule = "src/postscriptconnectionspace";

/// The tag of a font that is a part of another (PDF Reference, 5.5.3).
constexpr std::size_t kTagLetters = 6;
constexpr std::size_t kMostNameBytes = 255;

/// A packet that is open as long as this lives.
class OpenPacket {
public:
    /// `article` tells a new packet from one that was written before.
    OpenPacket(IO::IPacketDataProvider& packet, const char* mode, const char* article)
        : mPacket(packet) {
        const Status status = packet.Open(mode);
        mIsOpen = status == STATUS::kOk || status == STATUS::kAlreadyOpen;
        if (!mIsOpen) {
            LogError(kModule) << "Failed to open " << article
                              << " PS font packet, Mac OS X Yosemite onwards has a limit of 256 "
                                 "file descriptors opened at a time";
        }
    }

    OpenPacket(const OpenPacket&) = delete;
    OpenPacket& operator=(const OpenPacket&) = delete;
    OpenPacket(OpenPacket&&) = delete;
    OpenPacket& operator=(OpenPacket&&) = delete;

    ~OpenPacket() {
        if (mIsOpen && mPacket.Close() != STATUS::kOk) {
            LogError(kModule)
                << "Failed to close the PS font packet, Mac OS X Yosemite onwards has "
                   "a limit of 256 file descriptors opened at a time";
        }
    }

    [[nodiscard]] bool IsOpen() const { return mIsOpen; }

private:
    IO::IPacketDataProvider& mPacket;
    bool mIsOpen = false;
};

/// The packet (borrowed) that a builder writes, or null (logged).
IO::IPacketDataProvider* PacketOf(IFontBuilder& builder) {
    IPostScriptDataStream* stream = builder.GetStream();
    if (stream == nullptr) {
        LogError(kModule) << "Font builder with missing stream?";
        return nullptr;
    }
    IO::IPacketDataProvider* packet = stream->GetPacketDataProvider();
    if (packet == nullptr) {
        LogError(kModule) << "Font stream with missing data provider?";
    }
    return packet;
}

/// A new name for a font: random letters before the name, in the place of those that it has.
std::string MakeTaggedName(std::string_view name) {
    constexpr std::uint64_t kLetters = 26;
    if (name.size() > kTagLetters && name[kTagLetters] == '+') {
        name.remove_prefix(kTagLetters + 1);
    }
    std::string tagged;
    std::uint64_t bits = PLATFORM::NextRandom();
    for (std::size_t i = 0; i < kTagLetters; ++i, bits /= kLetters) {
        tagged += static_cast<char>('A' + bits % kLetters);
    }
    tagged += '+';
    tagged += EscapeFontName(name);
    tagged.resize(std::min(tagged.size(), kMostNameBytes));
    return tagged;
}

/// The program of a font as it is compared.
struct Program {
    explicit Program(const IFontPackageHandler& handler)
        : name(handler.GetName()), type(handler.GetFontType()) {
        if (const auto* info = FindInterface<GRAPHICS::ICompositeFontInfo>(
                &handler, GRAPHICS::IID_ICOMPOSITEFONTINFO)) {
            isComposite = true;
            isVertical = info->IsVertical();
        }
        if (const auto* source =
                FindInterface<GRAPHICS::IFontData>(&handler, GRAPHICS::IID_IFONTDATA)) {
            hasData = true;
            data = source->GetData();
            size = source->GetSize();
        }
    }

    [[nodiscard]] std::strong_ordering CompareData(const Program& other) const {
        if (size != other.size || data == other.data || data == nullptr || other.data == nullptr) {
            return std::pair(size, data != nullptr) <=>
                   std::pair(other.size, other.data != nullptr);
        }
        const auto bytes = static_cast<std::size_t>(std::max(size, 0));
        return std::compare_three_way{}(std::memcmp(data, other.data, bytes), 0);
    }

    std::string_view name;
    GRAPHICS::TFontType type;
    bool isComposite = false;
    bool isVertical = false;
    bool hasData = false;
    const std::uint8_t* data = nullptr;
    std::int32_t size = 0;
};

}  // namespace

bool ProgramOrder::operator()(const IFontPackageHandler* a, const IFontPackageHandler* b) const {
    const Program left(*a);
    const Program right(*b);
    const auto key = [](const Program& program) {
        return std::tuple(program.name, program.type, program.isComposite, program.isVertical,
                          program.hasData);
    };
    if (const auto order = key(left) <=> key(right); std::is_neq(order)) {
        return std::is_lt(order);
    }
    return left.hasData ? std::is_lt(left.CompareData(right)) : a->Less(*b);
}

PSFontPacketsBuilder::PSFontPacketsBuilder(PostScriptConnectionSpace& space, JobFonts& fonts,
                                           IPSFontBuilderFactory& maker, IClassFactory& factory)
    : mSpace(space), mFonts(fonts), mMaker(maker), mFactory(factory) {}

bool PSFontPacketsBuilder::operator()(const GRAPHICS::IFontFamily* family) {
    if (family == nullptr) {
        return true;
    }
    const std::int32_t count = family->GetFontCount();
    for (std::int32_t i = 0; i < count; ++i) {
        auto* handler =
            FindInterface<Handler>(family->GetFont(i), GRAPHICS::IID_IFONTPACKAGEHANDLER);
        if (handler == nullptr) {
            LogError(kModule) << "No font package handler on the font.";
            continue;
        }
        if (handler->GetFontType() == GRAPHICS::TFontType::kType3) {
            mDeferred.insert(handler);
            break;
        }
        BuildFontPacket(*handler);
    }
    return false;
}

void PSFontPacketsBuilder::BuildDeferred() {
    for (Handler* handler : mDeferred) {
        BuildFontPacket(*handler);
    }
}

void PSFontPacketsBuilder::BuildFontPacket(Handler& handler) {
    std::int32_t differences = 0;
    const bool isChanged =
        handler.GetEncodingDifferences(differences) != nullptr && differences > 0;
    if (!handler.IsEmbedded() && !isChanged) {
        const std::string name = EscapeFontName(handler.GetName());
        mFonts.usedNames.insert(name);
        AddName(handler, name);
        return;
    }
    const std::string name = MakeUniqueName(handler.GetName());
    if (const auto known = mBuilders.find(&handler); known != mBuilders.end()) {
        DefineFromFont(handler, *known->second, name);
    } else {
        BuildNewFont(handler, name);
    }
}

std::string PSFontPacketsBuilder::MakeUniqueName(std::string_view name) {
    std::string tagged = MakeTaggedName(name);
    while (!mFonts.usedNames.insert(tagged).second) {
        tagged = MakeTaggedName(name);
    }
    return tagged;
}

void PSFontPacketsBuilder::AddName(Handler& handler, const std::string& name) {
    if (!mFonts.names.try_emplace(TInterfacePtr<Handler>(&handler), name).second) {
        LogError(kModule) << "SANITY Check : Fontpackage handler already exists in "
                             "map<FontPackageHandler, PSFontName>, we should not reach here!";
    }
}

void PSFontPacketsBuilder::BuildNewFont(Handler& handler, const std::string& name) {
    const auto packet =
        TInterfacePtr<IO::IPacketDataProvider>::Adopt(IO::CreateWPacketDataProvider());
    if (!packet) {
        LogError(kModule) << "Could not create an IPacketDataProvider.";
        return;
    }
    const OpenPacket open(*packet, "w+b", "a");
    if (!open.IsOpen()) {
        return;
    }
    const bool isEmbedded = handler.IsEmbedded();
    const JobPolicy& policy = mSpace.GetPolicy();
    auto builder = TInterfacePtr<IFontBuilder>::Adopt(mMaker.CreatePSFontBuilder(
        mFactory, &handler, *packet, isEmbedded ? name.c_str() : handler.GetName(),
        PostScriptConnectionSpace::GetPSFontType(handler, policy.languageLevel,
                                                 policy.trueTypeDownload)));
    if (!builder) {
        return;
    }
    builder->Aggregate(&mSpace, GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE);
    if (isEmbedded ? builder->BuildFont() : builder->DefineFont(&handler, name.c_str())) {
        AddName(handler, name);
        mBuilders.emplace(&handler, builder.Get());
        mList.push_back(std::move(builder));
    } else if (isEmbedded) {
        LogError(kModule) << "Failed to build a font for postscript!";
        AddName(handler, EscapeFontName(handler.GetName()));
    } else {
        LogError(kModule) << "Failed to define a font for postscript!";
        AddName(handler, builder->GetFontName());
    }
}

void PSFontPacketsBuilder::DefineFromFont(Handler& handler, IFontBuilder& builder,
                                          const std::string& name) {
    IO::IPacketDataProvider* packet = PacketOf(builder);
    if (packet == nullptr) {
        return;
    }
    const OpenPacket open(*packet, "a+b", "the");
    if (!open.IsOpen()) {
        return;
    }
    if (builder.DefineFont(&handler, name.c_str())) {
        AddName(handler, name);
    } else {
        LogError(kModule) << "Failed to define a font for postscript!";
        AddName(handler, builder.GetFontName());
    }
}

void PSFontPacketsBuilder::CopyTo(IPostScriptDataStream& out) {
    for (const TInterfacePtr<IFontBuilder>& builder : mList) {
        IO::IPacketDataProvider* packet = PacketOf(*builder);
        if (packet == nullptr) {
            continue;
        }
        const OpenPacket open(*packet, "rb", "the");
        if (open.IsOpen()) {
            packet->SetPosition(0, IO::Offset::kBegin);
            out.WriteDataProvider(*packet);
        }
    }
}

}  // namespace VANTIX::PS
