/// Cameras without hardware.
#ifndef ZYNCAM_SIMULATOR_H
#define ZYNCAM_SIMULATOR_H

namespace zyncam {

/// Makes the library load the simulated cameras beside whatever else there is: adds the simulator's folder, which
/// lies beside the libraries, to the places where GenTL producers are looked for. Call it before the library is
/// started. Throws Failure when the simulator is not installed.
void AddSimulatedCameras();

}  // namespace zyncam

#endif
