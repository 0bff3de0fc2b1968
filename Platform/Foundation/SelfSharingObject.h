// The base of the classes whose objects find their owners by themselves, to hand themselves out or to stay alive
// through a call. It takes two words an object, which those that come by the hundred thousand do without. Threads: as
// the subclass says.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

class SelfSharingObject : public NSObject, public std::enable_shared_from_this<SelfSharingObject> {};

} // namespace veyra
