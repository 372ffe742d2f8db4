#ifndef ZYN_STRESS_STRESS_TRANSPORT_H
#define ZYN_STRESS_STRESS_TRANSPORT_H

/// A transport for many threads: four cameras, "S0" to "S3", the last one 3D.
///
/// Every open makes a camera with a node map and registers of its own, which ends with its release. Frames are
/// made for each wait, filled with one byte value, with a chunk of the same value; some waits time out, some
/// opens fail. The search finds each camera under one of two descriptions in turn, and "S2" only sometimes.
namespace stress {

constexpr int kCameras = 4;

/// Cameras and frames that were handed out and not released yet.
int LiveCameras();
int LiveFrames();

}  // namespace stress

#endif
