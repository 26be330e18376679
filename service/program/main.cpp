#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

#include "http/console.h"
#include "http/json.h"
#include "http/log_file.h"
#include "platform/ports.h"
#include "service/program/serve.h"
#include "service/tokens.h"
#include "service/views.h"
#include "version.h"

namespace mirvane::service {
namespace {

constexpr const char* kAbout =
    "Receipts over HTTP, each exactly once, at one cash register. Without options it drives the register at\n"
    "127.0.0.1:9100 and is asked at http://127.0.0.1:8200/.";

constexpr const char* kNameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";

/// Nobody sees the console of what the service manager has started.
int run(const Options& options) {
  const std::filesystem::path log = pathOf(options.store + ".log");
  const auto output = [&log](std::string_view lines) { addToLog(log, lines); };
  const std::optional<int> managed = runManaged([&](const Manager& manager) {
    try {
      return serve(options, output, manager);
    } catch (const std::exception& error) {
      const http::Json time = timeText(platform::hostPlatform().clock.sinceEpoch());
      output(http::Json{{"time", time}, {"event", "failed"}, {"reason", error.what()}}.dump(false) + "\n");
      return 1;
    }
  });
  return managed ? *managed : serve(options, writeOut, {});
}

/// What a service is started with: these options, wherever it is started.
std::vector<std::string> commandOf(const std::string& serviceName, const CLI::App& app) {
  std::vector<std::string> arguments = {"run", "--service-name=" + serviceName};
  for (const CLI::Option* option : app.get_options()) {
    const std::string name = option->get_name();
    if (name == "--service-name") continue;
    const bool isFile = name == "--tokens" || name == "--store";
    for (const std::string& value : option->results()) {
      arguments.push_back(name + "=" + (isFile ? utf8Of(std::filesystem::absolute(pathOf(value))) : value));
    }
  }
  return arguments;
}

void installAs(const std::string& name, const Options& options, const std::vector<std::string>& arguments) {
  require(options);
  const auto folderOf = [](const std::filesystem::path& file) { return std::filesystem::absolute(file).parent_path(); };
  install(name, arguments, {folderOf(pathOf(options.store)), folderOf(tokensFile(options))});
  std::cout << name << " is installed and runs. Its log is " << options.store << ".log\n";
}

void changeTokens(const Options& options, const std::string& verb, const std::string& name) {
  Tokens tokens(tokensFile(options));
  if (verb == "add") {
    const std::string fresh = tokens.add(name);
    if (fresh.empty()) throw std::invalid_argument("there is a token of that name");
    std::cout << fresh << "\n";
  } else if (verb == "remove") {
    if (!tokens.remove(name)) throw std::invalid_argument("there is no token of that name");
  } else {
    for (const auto& [owner, hash] : tokens.hashes()) std::cout << owner << "\n";
  }
}

int dispatch(std::vector<std::string> arguments) {
  Options options;
  std::string serviceName, tokenName;
  CLI::App app(kAbout, "mirvane-service");
  app.set_version_flag("--version", "mirvane-service " MIRVANE_VERSION);
  app.require_subcommand(0, 1);
  app.add_option("--store", options.store,
                 "the database's file (mirvane-service.db), or one that several services share: postgresql://...");
  app.add_option("--name", options.registerName, "the register's name among those that share the database");
  app.add_option("--group", options.group, "the registers that may do each other's work, by a name");
  app.add_option("--tokens", options.tokens, "the tokens' file; without it, it stands beside the database's");
  app.add_option("--register", options.port, "where the register is: COM1, /dev/ttyUSB0, 192.168.1.50:9100");
  app.add_option("--web", options.web,
                 "[ADDRESS:]PORT to be asked at; any address but this machine's own wants tokens");
  app.add_option("--web-host", options.hosts, "serve under this name too, which a proxy may have for it; wants tokens");
  app.add_option("--origin", options.origins, "let pages from there ask: https://till.shop");
  app.add_option("--queue", options.mostUnfinished, "how many jobs may wait (10000)");
  app.add_option("--service-name", serviceName,
                 "which of this machine's services: its database is NAME.db in " + utf8Of(servicesFolder()))
      ->check([](const std::string& name) {
        const bool isName = name.find_first_not_of(kNameCharacters) == std::string::npos;
        return isName ? "" : "a name has letters, digits, \"-\" and \"_\"";
      });
  app.add_flag("--record", options.isRecorded, "write the flight record into the folder records beside the database");
  app.add_subcommand("run", "in this console, which is what happens without a word too")->fallthrough();
  CLI::App* installs = app.add_subcommand("install", "registers and starts a Windows service")->fallthrough();
  CLI::App* uninstalls =
      app.add_subcommand("uninstall", "stops a Windows service and removes it; its database stays")->fallthrough();
  CLI::App* token = app.add_subcommand("token", "who may ask")->require_subcommand(1)->fallthrough();
  CLI::App* add = token->add_subcommand("add", "makes a token and prints it, once")->fallthrough();
  add->add_option("NAME", tokenName)->required();
  CLI::App* remove = token->add_subcommand("remove", "takes a token back")->fallthrough();
  remove->add_option("NAME", tokenName)->required();
  token->add_subcommand("list", "prints the names")->fallthrough();
  try {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  if ((*installs || *uninstalls) && serviceName.empty()) serviceName = "mirvane-service";
  if (options.store.empty() && !serviceName.empty()) options.store = utf8Of(servicesFolder() / (serviceName + ".db"));
  if (options.store.empty()) options.store = "mirvane-service.db";
  if (options.tokens.empty() && isPostgres(options.store) && !serviceName.empty())
    options.tokens = utf8Of(servicesFolder() / (serviceName + ".tokens"));
  if (*installs) return installAs(serviceName, options, commandOf(serviceName, app)), 0;
  if (*uninstalls) {
    uninstall(serviceName);
    std::cout << serviceName << " is removed. Its database stays.\n";
    return 0;
  }
  if (!*token) return run(options);
  // The first token may come before the first service.
  if (*add && !serviceName.empty()) makeFolder(tokensFile(options).parent_path());
  changeTokens(options, token->get_subcommands().front()->get_name(), tokenName);
  return 0;
}

int runToTheEnd(const std::vector<std::string>& arguments) {
  try {
    return dispatch(arguments);
  } catch (const ManagerError& error) {
    std::cerr << "mirvane-service: " << error.what() << "\n";
    return error.code;
  } catch (const std::invalid_argument& error) {
    std::cerr << "mirvane-service: " << error.what() << "\nTry --help.\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "mirvane-service: " << error.what() << "\n";
    return 1;
  }
}

}  // namespace
}  // namespace mirvane::service

int main(int count, char** arguments) {
  mirvane::prepareConsole();
  return mirvane::service::runToTheEnd(mirvane::commandLine(count, arguments));
}
