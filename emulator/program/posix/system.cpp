#include "emulator/program/system.h"

namespace mirvane::emulator {

std::vector<std::string> commandLine(int count, char** arguments) { return {arguments + 1, arguments + count}; }

void prepareConsole() {}

void openBrowser(const std::string& /*url*/) {}

void keepConsole() {}

bool mayReusePorts() { return true; }

}  // namespace mirvane::emulator
