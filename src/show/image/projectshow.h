// The device image of a project's track without a window, byte for byte what the window exports after opening the
// project.
#pragma once

#include "show/image/deviceimage.h"
#include "show/model/patternrecord.h"

#include <QVector>

namespace glow {

struct Project;

// How the prop is told to run the show.
struct ShowOptions
{
    int slot = 1;        // track slot on the device, 1 to 8
    bool loop = true;    // the prop starts over at the end
    int startMarkMs = 0; // show time that the lead-in is counted from
};

// The prop's numbers as the window's fields hold them after opening: cut to what the fields can show.
int shownLeds(const Project &project);
int shownRate(const Project &project);

// The patterns of a track (index into Project::tracks) in start-time order, with patterns of an equal start cut or
// dropped as the window does before it exports. Empty for a track that does not exist.
QVector<PatternRecord> exportedPatterns(const Project &project, int track);

DeviceShow showOfTrack(const Project &project, int track, const ShowOptions &options);

} // namespace glow
