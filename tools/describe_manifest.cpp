// Writes the manifest of the component as an assembly, with which a program can use it unregistered, to the standard
// output. The classes are those of the class table.
//
//   describe-manifest x86|amd64

#include <iostream>

#include "component/component.h"
#include "version.h"

namespace {

using namespace mirvane;

void writeManifest(std::string_view architecture) {
  std::cout << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="MirvaneEFT" version=")"
            << MIRVANE_VERSION ".0\" processorArchitecture=\"" << architecture
            << "\"/>\n  <file name=\"MirvaneEFT.dll\">\n";
  for (const PublicClass& c : publicClasses()) {
    std::cout << "    <comClass clsid=\"" << c.classId << "\" progid=\"" << kTypeLibraryName << '.'
              << c.describe().name() << "\" threadingModel=\"Apartment\" tlbid=\"" << kTypeLibraryId << "\"/>\n";
  }
  std::cout << "    <typelib tlbid=\"" << kTypeLibraryId << "\" version=\"" << kTypeLibraryMajor << '.'
            << kTypeLibraryMinor << "\" helpdir=\"\"/>\n  </file>\n";
  for (const PublicClass& c : publicClasses()) {
    // As registered: IDispatch is what they are based on, and the system's own proxy carries their calls.
    std::cout << "  <comInterfaceExternalProxyStub name=\"_" << c.describe().name() << "\" iid=\"" << c.interfaceId
              << "\" baseInterface=\"{00020400-0000-0000-C000-000000000046}\""
                 " proxyStubClsid32=\"{00020420-0000-0000-C000-000000000046}\" tlbid=\""
              << kTypeLibraryId << "\"/>\n";
  }
  std::cout << "</assembly>\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: describe-manifest x86|amd64\n";
    return 2;
  }
  writeManifest(argv[1]);
  std::cout.flush();
  return std::cout ? 0 : 1;
}
