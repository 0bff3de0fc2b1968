// The delegate that hosts give to every view: makes the addresses of annotation images. One for the process. Main
// queue.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

class HostViewDelegate final : public NSObject {
public:
    VEYRA_CLASS()

    /// `scriptObject:requestsURLForString:allowOtherDomains:error:`. The absolute address (string) of what the page
    /// calls `string`: a relative one is taken from the page's base address. Nil for what is no legal address, and for
    /// a file unless the page is a file itself. Other domains are always allowed and no error is given.
    id scriptObjectRequestsURLForStringAllowOtherDomainsError(const id& view, const id& string, bool allowOtherDomains,
                                                              const id& error);
};

} // namespace veyra
