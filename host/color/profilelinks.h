// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <list>
#include <memory>

#include "core/color/iconnectioncolorspace.h"
#include "core/types.h"

namespace VANTIX::HOST {

class IccProfile;

/// The links of one profile to the profiles that lines are converted into, made when first used;
/// the ones used last are kept. A link is what `IccProfile::ToPCS` and `FromPCS` do one after the
/// other, as one table. Used by one thread at a time.
class ProfileLinks {
public:
    ProfileLinks();
    ~ProfileLinks();
    ProfileLinks(const ProfileLinks&) = delete;
    ProfileLinks& operator=(const ProfileLinks&) = delete;
    ProfileLinks(ProfileLinks&&) = delete;
    ProfileLinks& operator=(ProfileLinks&&) = delete;

    /// One end of a link: the library's handle of a profile, and its family.
    struct End {
        void* handle;
        FourCC family;
    };

    /// Converts the samples of `line`, which are of 8 or 16 bits, in host form; its alpha is left
    /// alone. `owner` is what keeps the target alive. False, with nothing written, when the
    /// profiles cannot be linked.
    bool Convert(const End& source, const End& target,
                 const std::shared_ptr<const IccProfile>& owner, const COLOR::LineConversion& line);

private:
    struct Link;

    /// Pixels that are converted at once.
    static constexpr std::size_t kBlock = 1024;

    using Block = std::array<std::uint16_t, 4 * kBlock>;

    /// The link that is there, or a new one that is still to be made.
    Link& Find(const std::shared_ptr<const IccProfile>& owner, const COLOR::LineConversion& line);

    std::list<Link> mLinks;
    Block mIn{};
    Block mOut{};
};

}  // namespace VANTIX::HOST
