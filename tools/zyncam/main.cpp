/// zyncam: find cameras, look at them, set them up and grab images from the command line.
#include <Base/GCException.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Console.h"
#include "Failure.h"
#include "JsonText.h"
#include "Simulator.h"
#include "Verbs.h"

namespace zyncam {
namespace {

const std::map<std::string, int> kMaps = {
    {"camera", 0}, {"device", 1}, {"transport-layer", 2}, {"interface", 3}, {"stream", 4}};
const std::map<std::string, int> kVisibilities = {
    {"beginner", 0}, {"expert", 1}, {"guru", 2}, {"invisible", 3}};

constexpr const char* kFooter =
    "Exit codes: 0 done, 1 the camera or the library refused, 2 wrong command line, 3 no such camera,\n"
    "            4 no such feature or value, 5 a file could not be written, 130 interrupted.\n"
    "With --json the result, or {\"error\": …}, is one JSON text on standard output.";

/// Everything the command line can say.
struct CommandLine {
  CommonOptions common;
  FeaturesOptions features;
  AccessOptions access;
  GrabOptions grab;
  ProfileOptions profile;
  ScanOptions scan;
  CheckProducerOptions check;
  IpOptions ip;
  bool showTrace = false;
  bool simulate = false;
  std::function<int(Console&)> verb;  ///< returns an exit code
};

int ExitOf(bool wentToTheEnd) {
  return wentToTheEnd ? kExitOk : kExitInterrupted;
}

void AddJson(CLI::App* verb, CommandLine& line) {
  verb->add_flag("--json", line.common.json, "Print the result as JSON");
}

void AddCamera(CLI::App* verb, CommandLine& line) {
  verb->add_option(
      "-c,--camera", line.common.camera,
      "Serial number, user-defined name, address, MAC address or model; not needed when there is only one");
  AddJson(verb, line);
}

// Of the verbs that open 2D cameras.
void AddCard(CLI::App* verb, CommandLine& line) {
  verb->add_option("--card", line.common.card,
                   "Configuration file of a Camera Link card, applied when the camera is opened");
}

void AddMap(CLI::App* verb, int& map) {
  verb->add_option("-m,--map", map, "Whose features: the camera's own, or those of a module on this computer")
      ->transform(CLI::CheckedTransformer(kMaps, CLI::ignore_case)
                      .description("{camera,device,transport-layer,interface,stream}"));
}

void AddList(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand("list", "List the cameras that answer");
  AddJson(verb, line);
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      ListCameras(console, line.common);
      return kExitOk;
    };
  });
}

void AddInfo(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand("info", "Show everything that is known of a camera without opening it");
  AddCamera(verb, line);
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      ShowInfo(console, line.common);
      return kExitOk;
    };
  });
}

void AddFeatures(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand("features", "Show a camera's features with their values and limits");
  AddCamera(verb, line);
  AddCard(verb, line);
  AddMap(verb, line.features.map);
  verb->add_flag("--flat", line.features.flat, "One sorted list instead of the tree of categories");
  verb->add_option("--visibility", line.features.visibility, "Up to which level features are shown (guru)")
      ->transform(CLI::CheckedTransformer(kVisibilities, CLI::ignore_case)
                      .description("{beginner,expert,guru,invisible}"));
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      ShowFeatures(console, line.common, line.features);
      return kExitOk;
    };
  });
}

using AccessVerb = void (*)(Console&, const CommonOptions&, const AccessOptions&);

CLI::App* AddAccess(CLI::App& app, CommandLine& line, const char* name, const char* what, AccessVerb run) {
  CLI::App* verb = app.add_subcommand(name, what);
  AddCamera(verb, line);
  AddCard(verb, line);
  AddMap(verb, line.access.map);
  verb->callback([&line, run] {
    line.verb = [&line, run](Console& console) {
      run(console, line.common, line.access);
      return kExitOk;
    };
  });
  return verb;
}

void AddAccessVerbs(CLI::App& app, CommandLine& line) {
  AddAccess(app, line, "get", "Read features", &GetFeatures)
      ->add_option("FEATURE", line.access.features, "Names, for example Width ExposureTime")
      ->required();
  AddAccess(app, line, "set", "Write features, in the order given", &SetFeatures)
      ->add_option("FEATURE=VALUE", line.access.features,
                   "Assignments, for example Width=640 ExposureTime=5000")
      ->required();
  CLI::App* exec =
      AddAccess(app, line, "exec", "Execute a command and wait until it is done", &ExecuteFeature);
  exec->add_option("COMMAND", line.access.features, "Its name, for example TriggerSoftware")
      ->required()
      ->expected(1);
  exec->add_option("-t,--timeout", line.access.timeoutMs, "How long to wait, in milliseconds (5000)")
      ->check(CLI::Range(1, 3600000));
}

void AddGrab(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand("grab", "Grab images and write them to files");
  AddCamera(verb, line);
  AddCard(verb, line);
  verb->add_option("-n,--count", line.grab.count, "How many images (1); 0 until Ctrl-C")
      ->check(CLI::Range(0, 100000000));
  verb->add_option("-o,--output", line.grab.folder, "Folder for the files, made when missing (this one)");
  verb->add_option("-f,--format", line.grab.format,
                   "File format (png); raw: the bytes as they came; none: no files")
      ->check(CLI::IsMember({"png", "raw", "none"}));
  verb->add_option("-t,--timeout", line.grab.timeoutMs,
                   "How long to wait for each image, in milliseconds (5000)")
      ->check(CLI::Range(1, 3600000));
  verb->callback([&line] {
    line.verb = [&line](Console& console) { return ExitOf(GrabImages(console, line.common, line.grab)); };
  });
}

void AddProfile(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand("profile", "Grab profiles of a 3D camera: a table and a plot of each");
  AddCamera(verb, line);
  verb->add_option("-n,--count", line.profile.count, "How many profiles (1); 0 until Ctrl-C")
      ->check(CLI::Range(0, 100000000));
  verb->add_option("-o,--output", line.profile.folder, "Folder for the files, made when missing (this one)");
  verb->add_option("-t,--timeout", line.profile.timeoutMs,
                   "How long to wait for each profile, in milliseconds (5000)")
      ->check(CLI::Range(1, 3600000));
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      return ExitOf(GrabProfiles(console, line.common, line.profile));
    };
  });
}

void AddScan(CLI::App& app, CommandLine& line) {
  CLI::App* verb =
      app.add_subcommand("scan", "Grab a scan of a 3D camera: height map, coloured picture and point cloud");
  AddCamera(verb, line);
  verb->add_option("-l,--lines", line.scan.lines,
                   "Profiles per scan, rounded up to a multiple of 100 (as the camera is set)")
      ->check(CLI::Range(1, 65500));
  verb->add_option("-o,--output", line.scan.folder, "Folder for the files, made when missing (this one)");
  verb->add_option("-t,--timeout", line.scan.timeoutMs,
                   "How long to wait for each part of the scan, in milliseconds (5000)")
      ->check(CLI::Range(1, 3600000));
  verb->callback([&line] {
    line.verb = [&line](Console& console) { return ExitOf(GrabScan(console, line.common, line.scan)); };
  });
}

void AddIp(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand("ip", "Show the addresses of GigE Vision cameras, or assign one");
  AddJson(verb, line);
  verb->add_option("CAMERA", line.ip.camera, "Serial number, user-defined name, address or MAC address");
  CLI::Option* address =
      verb->add_option("ADDRESS", line.ip.address, "The address it gets, for example 192.168.1.50");
  verb->add_option("--mask", line.ip.mask, "Network mask (that of the adapter)")->needs(address);
  verb->add_option("--gateway", line.ip.gateway,
                   "Default gateway; 0.0.0.0 for none (the first address of the network)")
      ->needs(address);
  verb->add_flag("--persistent", line.ip.persistent,
                 "Store the address too: the camera starts with it. Otherwise it lasts until its power goes")
      ->needs(address);
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      ShowOrSetAddress(console, line.common, line.ip);
      return kExitOk;
    };
  });
}

void AddWatch(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand("watch", "Tell of cameras that appear and disappear, until Ctrl-C");
  verb->add_flag("--json", line.common.json, "Print one JSON object per line");
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      WatchCameras(console, line.common);
      return kExitOk;
    };
  });
}

void AddDoctor(CLI::App& app, CommandLine& line) {
  CLI::App* verb =
      app.add_subcommand("doctor", "Tell what keeps cameras from working here; changes and sends nothing");
  AddJson(verb, line);
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      return ExamineComputer(console, line.common) ? kExitOk : kExitFailed;
    };
  });
}

void AddCheckProducer(CLI::App& app, CommandLine& line) {
  CLI::App* verb = app.add_subcommand(
      "check-producer",
      "Put a GenTL producer through the rules that consumers rely on; exit code 1 when one fails");
  verb->add_option("FILE", line.check.file, "The producer's .cti file");
  verb->add_option("-c,--camera", line.common.camera,
                   "Device ID or serial number (the first that can be opened)");
  verb->add_option("--only", line.check.only, "Names of the checks to run (all)");
  verb->add_flag("--list", line.check.list, "Only tell which checks there are");
  verb->add_option("-t,--timeout", line.check.timeoutMs,
                   "How long a check may take before the producer counts as hanging, in milliseconds (30000)")
      ->check(CLI::Range(1000, 3600000));
  AddJson(verb, line);
  verb->callback([&line] {
    line.verb = [&line](Console& console) {
      return static_cast<int>(CheckProducerFile(console, line.common, line.check));
    };
  });
}

int ReportFailure(Console& console, const CommandLine& line, const Failure& failure) {
  console.EndProgress();
  if (line.common.json) {
    nlohmann::ordered_json error;
    error["message"] = failure.what();
    error["status"] = failure.Status();
    error["advice"] = failure.Advice();
    console.Line(JsonText({{"error", error}}));
    return failure.Exit();
  }
  Console::Note(std::string("zyncam: ") + failure.what());
  if (!failure.Advice().empty()) Console::Note("        " + failure.Advice());
  return failure.Exit();
}

int RunVerb(Console& console, const CommandLine& line) {
  try {
    if (line.simulate) AddSimulatedCameras();
    return line.verb(console);
  } catch (const Failure& failure) {
    return ReportFailure(console, line, failure);
  } catch (const GenICam_3_4::GenericException& error) {
    return ReportFailure(console, line, Failure(kExitFailed, error.GetDescription()));
  } catch (const std::exception& error) {
    return ReportFailure(console, line, Failure(kExitFailed, error.what()));
  }
}

bool HasVerb(const CLI::App& app, const std::string& name) {
  const std::vector<const CLI::App*> verbs =
      app.get_subcommands([&name](const CLI::App* verb) { return verb->get_name() == name; });
  return !verbs.empty();
}

int Run(int argc, char** argv) {
  CLI::App app("Finds industrial cameras, reads and writes their features, and grabs images.", "zyncam");
  app.footer(kFooter);
  app.require_subcommand(1);
  app.fallthrough();
  CommandLine line;
  app.add_flag("--trace", line.showTrace, "Show the library's trace lines on standard error");
  app.add_flag("--simulate", line.simulate,
               "Add simulated cameras; ZYN_SIMULATOR_CONFIG names a file that tells which");
  AddList(app, line);
  AddInfo(app, line);
  AddFeatures(app, line);
  AddAccessVerbs(app, line);
  AddGrab(app, line);
  AddProfile(app, line);
  AddScan(app, line);
  AddWatch(app, line);
  AddCheckProducer(app, line);
  AddIp(app, line);
  AddDoctor(app, line);
  // The flags before the verb take no values.
  char** const end = argv + argc;
  char** const verb = std::find_if(argv + 1, end, [](const char* word) { return word[0] != '-'; });
  if (argc > 1 && verb != end && !HasVerb(app, *verb)) {
    Console::Note(std::string("zyncam: there is no verb \"") + *verb + "\"; 'zyncam --help' lists them");
    return kExitUsage;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOk : kExitUsage;
  }
  Console console(line.showTrace);
  return RunVerb(console, line);
}

}  // namespace
}  // namespace zyncam

int main(int argc, char** argv) {
  try {
    return zyncam::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zyncam: %s\n", error.what());
    return zyncam::kExitFailed;
  }
}
