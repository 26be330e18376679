#include <unistd.h>

#include <fstream>

#include "bench/till.h"
#include "embedding/component.h"

namespace mirvane::bench {

ObjectPtr createPublic(std::string_view className) {
  static const embedding::Component component;
  return createObject(className);
}

void makeRecordFolder() {
  moduleState().recordFolder = u"records";
  platform::hostPlatform().files.makeFolder(u"records\\");
}

std::size_t memory() {
  std::size_t pages = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t componentSize() { return 0; }

}  // namespace mirvane::bench
