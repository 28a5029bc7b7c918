// What was found about a show (showcheck.h), in a performer's words.
#pragma once

#include <QString>

namespace glow {

struct Finding;

// A sentence without the place, in the user's language.
QString sentenceOf(const Finding &finding);

// The same behind the stretch of show time that is concerned; without one for the show as a whole.
QString lineOf(const Finding &finding);

// Has it a place in the show that one can go to?
bool hasPlace(const Finding &finding);

} // namespace glow
