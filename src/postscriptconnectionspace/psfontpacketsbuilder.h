// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/fonts/ifontbroker.h"
#include "core/object/iclassfactory.h"
#include "postscriptconnectionspace/jobfonts.h"
#include "psfontbuilderfactory.h"

namespace VANTIX::PS {

class PostScriptConnectionSpace;

/// Orders handlers by their font programs; those that are equal share one. A font without a program
/// is equal to itself alone.
struct ProgramOrder {
    bool operator()(const GRAPHICS::IFontPackageHandler* a,
                    const GRAPHICS::IFontPackageHandler* b) const;
};

/// Builds the fonts of a broker, each into a packet of its own, and names them. Lives for one
/// download.
class PSFontPacketsBuilder final : public GRAPHICS::IFamilyFunctor {
public:
    /// All arguments must outlive the builder.
    PSFontPacketsBuilder(PostScriptConnectionSpace& space, JobFonts& fonts,
                         IPSFontBuilderFactory& maker, IClassFactory& factory);

    /// Builds the fonts of a family up to the first Type 3 font, which is kept for later.
    bool operator()(const GRAPHICS::IFontFamily* family) override;
    /// Builds the Type 3 fonts that were kept.
    void BuildDeferred();
    /// Copies all packets in the order in which they were begun. One that cannot be read (logged)
    /// is left out.
    void CopyTo(IPostScriptDataStream& out);

private:
    using Handler = GRAPHICS::IFontPackageHandler;

    void BuildFontPacket(Handler& handler);
    /// Into a new packet. A font that fails leaves no packet, since half of it would not parse.
    void BuildNewFont(Handler& handler, const std::string& name);
    /// Behind the font with the same program.
    void DefineFromFont(Handler& handler, GRAPHICS::IFontBuilder& builder, const std::string& name);
    void AddName(Handler& handler, const std::string& name);
    std::string MakeUniqueName(std::string_view name);

    PostScriptConnectionSpace& mSpace;
    JobFonts& mFonts;
    IPSFontBuilderFactory& mMaker;
    IClassFactory& mFactory;
    std::set<Handler*, ProgramOrder> mDeferred;  // of the broker
    std::map<const Handler*, GRAPHICS::IFontBuilder*, ProgramOrder> mBuilders;
    std::vector<TInterfacePtr<GRAPHICS::IFontBuilder>> mList;
};

}  // namespace VANTIX::PS
