// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/color/colorspacefactory.h"
#include "host/graphics/baseconnectionspace.h"
#include "pdf/functions.h"
#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"

namespace VANTIX::PDF {

/// A colour space of the document as content selects it.
struct ColorSpaceEntry {
    enum class Kind : std::uint8_t {
        kSpace,     ///< `space` takes the values
        kReplaced,  ///< `tint` leads to values of `alternate`, which takes them
        kIndexed,   ///< `palette` leads to values of `alternate`, which takes them
        kBlack,     ///< broken beyond use: every colour is black
        kPattern    ///< colours are patterns; `alternate` is the underlying space, or null
    };

    struct Range {
        float low = 0.0F;
        float high = 1.0F;
    };

    Kind kind = Kind::kSpace;
    std::string name;  ///< for reports: "ICCBased", "Separation Orange"
    std::int32_t components = 0;
    bool complemented = false;  ///< the host stores complements (CMYK)
    bool special = false;       ///< Separation, DeviceN, Indexed: no alternate or base of others
    std::array<Range, COLOR::kMaxComponents> ranges{};
    HOST::ColorSpacePtr space;
    ResourceId id = 0;
    HOST::FunctionPtr tint;
    const ColorSpaceEntry* alternate = nullptr;
    std::string palette;  ///< of an Indexed space, as bytes of the document
    mutable bool used = false;
};

/// The space in which the host holds colours of `entry`: itself, or what stands behind a palette or
/// a replaced space. That of patterns without an underlying space stays as it is.
const ColorSpaceEntry& SpaceBehind(const ColorSpaceEntry& entry);

/// The spaces that stand for DeviceGray, DeviceRGB and DeviceCMYK, in this order; null for the
/// device space itself. `key` is equal for equal sets and 0 for none.
struct DefaultSpaces {
    std::array<const ColorSpaceEntry*, 3> spaces{};
    std::uint32_t key = 0;
};

/// What the colour-space reader needs of a run.
struct ColorSpaceOptions {
    std::int32_t languageLevel = 3;
    bool embedProfiles = false;
};

/// Makes the host's colour spaces of PDF colour spaces (PDF Reference, 4.5), numbers them, and
/// keeps them for the whole document. Broken ones are reported and replaced by the nearest
/// thing that works.
class ColorSpaces {
public:
    ColorSpaces(HOST::ColorSpaceFactory& factory, HOST::BaseConnectionSpace& space,
                const ColorSpaceOptions& options, Reporter& reporter);

    /// The space that `object` (a name or an array) describes. Entries live as long as this object.
    const ColorSpaceEntry& Resolve(const QPDFObjectHandle& object, const DefaultSpaces& defaults);

    /// The space of a name that is none of the resources, or null.
    const ColorSpaceEntry* Named(const std::string& name, const DefaultSpaces& defaults);

    /// The entries of `colorSpaces` (a resource dictionary's /ColorSpace) that stand for the device
    /// spaces.
    DefaultSpaces DefaultsOf(const QPDFObjectHandle& colorSpaces);

    /// The space of an ICC profile that stands in image data, or null when it is of no use.
    const ColorSpaceEntry* OfProfile(const std::string& profile, std::int32_t components);

    /// A palette space of the host: `table` in host form. Null when it cannot be.
    HOST::ColorSpacePtr PaletteSpace(const HOST::ColorSpacePtr& base,
                                     std::vector<std::uint8_t> table);

    /// Notes that samples of `entry` are drawn, as images and shadings have them, with all that
    /// this needs.
    void UseWithAlternates(const ColorSpaceEntry& entry);

    /// Makes `entry` the space of `color`, with its initial colour. A pattern space leaves it.
    void Select(const ColorSpaceEntry& entry, HOST::CurrentColor& color);

    /// Sets the values (in PDF form) of a colour whose space is `entry`. Missing ones are 0.
    void SetValues(const ColorSpaceEntry& entry, std::span<const float> values,
                   HOST::CurrentColor& color);

    /// Lets `recording`, too, find all spaces under their numbers.
    void ServeRecording(HOST::BaseConnectionSpace& recording) const {
        recording.ShareColorSpaces(mSpace);
    }

    [[nodiscard]] const std::set<std::string>& UsedNames() const { return mUsedNames; }

private:
    using Entry = ColorSpaceEntry;
    struct Request;

    const Entry& ResolveNested(const QPDFObjectHandle& object, const DefaultSpaces& defaults,
                               int depth);
    const Entry& MakeArraySpace(QPDFObjectHandle array, const DefaultSpaces& defaults, int depth);
    const Entry& Add(Entry entry);
    const Entry& Broken(const std::string& reason, std::int32_t components);
    const Entry& Black();
    const Entry& Device(FourCC family);
    const Entry& DeviceOf(std::int32_t components);
    void Use(const Entry& entry);

    const Entry& MakeCalGray(const Request& request);
    const Entry& MakeCalRGB(const Request& request);
    const Entry& MakeLab(const Request& request);
    const Entry& MakeICCBased(const Request& request);
    const Entry* MakeProfileSpace(const std::string& profile, std::int32_t components,
                                  std::string& error);
    const Entry& MakeProfileAlternate(const Request& request, std::int32_t components,
                                      const std::string& reason);
    const Entry& MakeIndexed(const Request& request);
    const Entry& MakePattern(const Request& request);
    const Entry& MakeSeparation(const Request& request);
    const Entry& MakeRegistration();
    const Entry& MakeFallbackSeparation(const std::string& name, const std::string& reason);
    const Entry& MakeDeviceN(const Request& request);
    TInterfacePtr<COLOR::IInkCollection> MakeInks(const Request& request,
                                                  const std::vector<std::string>& names);
    const Entry* ProcessColor(const Request& request, const std::string& name,
                              std::array<float, COLOR::kMaxComponents>& values);
    const Entry* ColorantColor(const Request& request, const std::string& name,
                               std::array<float, COLOR::kMaxComponents>& values);

    HOST::ColorSpaceFactory& mFactory;
    HOST::BaseConnectionSpace& mSpace;
    ColorSpaceOptions mOptions;
    Reporter& mReporter;
    FunctionReader mFunctions;
    std::vector<std::unique_ptr<Entry>> mEntries;
    std::map<std::pair<QPDFObjGen, std::uint32_t>, const Entry*> mByObject;
    std::map<std::string, const Entry*, std::less<>> mByText;
    std::map<std::array<const Entry*, 3>, std::uint32_t> mDefaultKeys;
    std::array<const Entry*, 3> mDevices{};
    const Entry* mPattern = nullptr;
    std::set<QPDFObjGen> mInProgress;
    std::set<std::string> mUsedNames;
    // Far below every four-character code, which are the numbers of device spaces.
    ResourceId mNextId = 1;
};

/// What a maker of one family works on: the array of the space, and where it stands.
struct ColorSpaces::Request {
    QPDFObjectHandle array;
    const DefaultSpaces& defaults;
    int depth;

    [[nodiscard]] QPDFObjectHandle Item(int index) const {
        QPDFObjectHandle list = array;
        return index < list.getArrayNItems() ? list.getArrayItem(index)
                                             : QPDFObjectHandle::newNull();
    }
};

}  // namespace VANTIX::PDF
