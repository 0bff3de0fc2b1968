// Colours from the strings that scripts write.
#pragma once

#include "Platform/Foundation/id.h"
#include "Platform/UIKit/UIColor.h"

namespace veyra {

/// A colour of six hexadecimal digits, RRGGBB, with the alpha as given. The digits stand at fixed places: there is no
/// prefix, and what follows the sixth is ignored. A pair that is no number counts as 0. Throws NSException
/// (NSRangeException) for fewer than six characters, (NSInvalidArgumentException) for what is no string. Any thread.
std::shared_ptr<UIColor> _veyra_colorWithHexStringAlpha(const id& string, double alpha);

} // namespace veyra
