// Turns the readable message catalogue into Lang.dat: compile-catalogue INPUT OUTPUT.

#include <array>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>

#include "text/code_page.h"

namespace {

constexpr std::array<std::string_view, 2> kLanguages = {"el", "en"};
constexpr std::size_t kFieldLength = 100;

using Record = std::array<std::string, kLanguages.size()>;

std::string padded(std::string_view utf8) {
  bool replaced = false;
  std::string field = mirvane::toCodePage(mirvane::fromUtf8(utf8), &replaced);
  if (replaced) throw std::runtime_error("a character that code page 1253 does not have");
  if (field.size() > kFieldLength) throw std::runtime_error("longer than 100 characters");
  field.resize(kFieldLength, ' ');
  return field;
}

std::map<int, Record> readMessages(std::istream& input, int& lineNumber) {
  std::map<int, Record> messages;
  Record* current = nullptr;
  for (std::string line; std::getline(input, line);) {
    ++lineNumber;
    if (line.empty() || line.starts_with('#')) continue;
    if (line.starts_with('[')) {
      const int number = std::stoi(line.substr(1));
      if (number < 1 || messages.contains(number)) throw std::runtime_error("not a new message number");
      current = &messages[number];
      current->fill(padded(""));
      continue;
    }
    bool known = false;
    for (std::size_t i = 0; i < kLanguages.size(); ++i) {
      if (!line.starts_with(std::string(kLanguages[i]) + ": ")) continue;
      if (current == nullptr) throw std::runtime_error("a text before the first message number");
      (*current)[i] = padded(std::string_view(line).substr(kLanguages[i].size() + 2));
      known = true;
    }
    if (!known) throw std::runtime_error("neither a number, a text nor a comment");
  }
  return messages;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: compile-catalogue INPUT OUTPUT\n";
    return 2;
  }
  int lineNumber = 0;
  try {
    std::ifstream input(argv[1]);
    if (!input) throw std::runtime_error("cannot be read");
    const std::map<int, Record> messages = readMessages(input, lineNumber);
    std::string file(1, static_cast<char>(kLanguages.size()));
    const int last = messages.empty() ? 0 : messages.rbegin()->first;
    for (int number = 1; number <= last; ++number) {
      const auto message = messages.find(number);
      for (std::size_t i = 0; i < kLanguages.size(); ++i) {
        file += message == messages.end() ? padded("") : message->second[i];
      }
      file += "\r\n";
    }
    std::ofstream output(argv[2], std::ios::binary);
    output << file;
    output.close();
    if (!output) throw std::runtime_error(std::string("cannot write ") + argv[2]);
  } catch (const std::exception& error) {
    std::cerr << argv[1] << ":" << lineNumber << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
