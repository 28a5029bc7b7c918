// The texts that are this program's own additions, in the user's language.
#pragma once

class QString;

namespace glow {

// source is Traditional Chinese; its English stands in the catalogue's context "Hints".
QString hint(const char *source);

} // namespace glow
