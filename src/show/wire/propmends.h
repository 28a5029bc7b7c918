// What usually is the matter when a prop is not found or does not do as it is told, and what mends it: several lines in
// the user's language, to stand under a message.
#pragma once

#include <QString>

namespace glow {

enum class ScanResult;
enum class UploadEnd;

// Empty for Found and Sent.
QString mendOf(ScanResult result);
QString mendOf(UploadEnd end);

// Of a wipe that the prop has not confirmed.
QString mendOfWipe();

} // namespace glow
