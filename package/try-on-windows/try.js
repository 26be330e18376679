// Tries the release on this machine: see try-on-windows.cmd. A trial passes, fails, or is not there to be tried. This is
// JScript, which every Windows has; VBScript may have been taken out.

var shell = new ActiveXObject("WScript.Shell");
var files = new ActiveXObject("Scripting.FileSystemObject");
var here = files.GetParentFolderName(WScript.ScriptFullName);
var release = files.GetParentFolderName(here);
var reportFile = release + "\\try-on-windows.txt";
var work = environment("TEMP") + "\\try-on-windows";
var windows = environment("SystemRoot");
var architecture = environment("PROCESSOR_ARCHITECTURE");
var is64Bit = architecture !== "x86";
var isAdministrator = false;
var bitnesses = is64Bit && architecture !== "ARM64" ? [64, 32] : [32];
var readsUtf16, hasVbscript;
var address = "";
var lastLine = new Date();
var counts = {passed: 0, FAILED: 0, "not there": 0};
var report = null;
var folders = ["C:\\bbox", "C:\\bboxBackUp"], foldersWereThere = [];

WScript.Quit(main());

function main() {
  report = files.CreateTextFile(reportFile, true, true);
  say("MirvaneEFT on this machine, " + new Date().toString());
  if (isRegistered()) {
    say("MirvaneEFT is installed or registered here. Uninstall it first, or use another machine: nothing was tried.");
    return 2;
  }
  if (files.FolderExists(work)) files.DeleteFolder(work, true);
  files.CreateFolder(work);
  for (var i = 0; i < folders.length; ++i) foldersWereThere[i] = files.FolderExists(folders[i]);
  try {
    lookAround();
    eachBitness(tryUnregistered);
    tryRegistered();
    tryInstaller();
  } catch (error) {
    failed("the trial", "it was aborted: " + error.message + " (" + (error.number & 0xFFFF) + ")", "");
  }
  cleanUp();
  say("");
  say(counts.passed + " passed, " + counts.FAILED + " failed, " + counts["not there"] + " were missing and not tried.");
  report.Close();
  WScript.Echo("The report is " + reportFile);
  return counts.FAILED ? 1 : 0;
}

// ---- The trials

function lookAround() {
  isAdministrator = run("reg add HKLM\\Software\\MirvaneTry /f").code === 0;
  if (isAdministrator) run("reg delete HKLM\\Software\\MirvaneTry /f");
  say(trimmed(run("ver").text) + ", " + architecture + ", " + (isAdministrator ? "" : "not ") + "as administrator");
  if (bitnesses.length === 1) notThere("64-bit programs", "the 64-bit DLL is for another processor");
  var host = scriptHost(bitnesses[0]);
  readsUtf16 = ended(run(host + quoted(write("probe.js", "WScript.Echo(\"ok\");", true)))) === "";
  if (readsUtf16) passed("scripts in UTF-16");
  else notThere("scripts in UTF-16", "copies in this machine's code page are run");
  hasVbscript = ended(run(host + quoted(write("probe.vbs", "WScript.Echo \"ok\"", false)))) === "";
  if (!hasVbscript) notThere("VBScript", "it is an optional feature of Windows 11");
}

// A till in a folder with the component, and a manifest that tells Windows so.
function tryUnregistered(bits) {
  var folder = work + "\\unregistered" + bits, architecture = bits === 32 ? "x86" : "amd64";
  var dll = release + "\\win" + bits + "\\MirvaneEFT.dll";
  function identity(name, version) {
    return "<assemblyIdentity type=\"win32\" name=\"" + name + "\" version=\"" + version + "\" processorArchitecture=\"" +
      architecture + "\"/>";
  }
  files.CreateFolder(folder);
  files.CopyFile(dll, folder + "\\");
  files.CopyFile(release + "\\win" + bits + "\\Lang.dat", folder + "\\");
  files.CopyFile(here + "\\win" + bits + "\\till-late.exe", folder + "\\");
  write("unregistered" + bits + "\\till-late.exe.manifest", "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" " +
    "manifestVersion=\"1.0\">" + identity("Till", "1.0.0.0") + "<dependency><dependentAssembly>" +
    identity("MirvaneEFT", files.GetFileVersion(dll)) + "</dependentAssembly></dependency></assembly>", false);
  withEmulator("", function () {
    var till = run(quoted(folder + "\\till-late.exe") + " " + address);
    verdict("without registration, " + bits + "-bit", ended(till), till.text);
  });
}

function tryRegistered() {
  registerAll("registering", "");
  eachBitness(trySelfTest);
  eachBitness(tryScripts);
  eachBitness(tryPrograms);
  notThere("a window while a serial line is silent, and two programs at one line", "it takes a serial port");
  tryLanguages();
  registerAll("taking back the registration of", "/u ");
}

function trySelfTest(bits) {
  var check = run(quoted(release + "\\win" + bits + "\\mirvane-check.exe") + " --language en --self-test");
  verdict("mirvane-check --self-test, " + bits + "-bit", check.code < 2 ? "" : "it ended with " + check.code, check.text);
}

function tryScripts(bits) {
  var places = [[release + "\\examples\\vbscript", "example "], [release + "\\examples\\jscript", "example "],
                [here + "\\scripts", "script "]];
  for (var i = 0; i < places.length; ++i) {
    var names = namesIn(places[i][0]);
    for (var j = 0; j < names.length; ++j) {
      if (hasVbscript ? /\.(vbs|js)$/.test(names[j]) : /\.js$/.test(names[j])) tryScript(places[i][1] + names[j], bits, places[i][0] + "\\" + names[j]);
    }
  }
}

// The first line of a script may say how its register is to be: see tests/com/com_test.sh.
function tryScript(title, bits, file) {
  var text = read(file), first = text.substr(0, text.search(/[\r\n]|$/));
  var options = /emulator: (.*)/.exec(first);
  if (!readsUtf16) file = write(files.GetFileName(file), text, false);
  withEmulator(options ? options[1] : "", function () {
    var till = run(scriptHost(bits) + quoted(file) + " " + address + " " + address + " " + quoted(work + "\\paper.txt"));
    verdict(title + ", " + bits + "-bit", ended(till), till.text);
  });
}

// What a script cannot do: threads, windows, typed pointers. See tests/com.
function tryPrograms(bits) {
  var subjects = ["within guests", "left left", "left released",
                  "left ended", "host cycles", "host floating_point", "host threads", "host service",
                  "typed-caller", "till-early", "till-late"];
  for (var i = 0; i < subjects.length; ++i) tryProgram(subjects[i], bits);
}

function tryProgram(subject, bits) {
  var words = subject.split(" "), ports = words[0] === "typed-caller" ? "" : " " + address;
  var options = "--preset restaurant --card-seconds 1 --fault \"on 3/S//left always busy 14\" " +
    "--fault \"on 3/S//refused always code 116\" " +
    "--fault \"on 3/S//first busy 14\" --fault \"on 3/S//second busy 14\"";
  for (var i = 0; i < 4; ++i) options += " --fault \"on 3/S//busy" + i + " busy 14\"";
  withEmulator(options, function () {
    var program = quoted(here + "\\win" + bits + "\\" + words[0] + ".exe");
    var till = run(program + (words[1] ? " " + words[1] : "") +
      (words[0] === "typed-caller" ? "" : " " + address + (words[1] ? " " + address : "")));
    verdict("program " + subject + ", " + bits + "-bit", ended(till), till.text);
  });
}

// Each language: what shows that it is there, what builds the sample, and the sample.
function tryLanguages() {
  var examples = release + "\\examples\\";
  function csc(folder) { return quoted(windows + "\\Microsoft.NET\\" + folder + "\\v4.0.30319\\csc.exe"); }
  function powershell(folder) {
    return quoted(windows + "\\" + folder + "\\WindowsPowerShell\\v1.0\\powershell.exe") + " -NoProfile -ExecutionPolicy Bypass ";
  }
  function sharp(platform, folder) {
    tryLanguage("C#, " + platform, csc(folder) + " /help", /C#/, csc(folder) + " /nologo /codepage:65001 /platform:" +
      platform + " /out:" + quoted(work + "\\Till.exe") + " " + quoted(examples + "csharp\\Till.cs"),
      quoted(work + "\\Till.exe"));
  }
  function power(title, folder) {
    tryLanguage(title, powershell(folder) + "-Command \"'there'\"", /^there/m, "",
      powershell(folder) + "-File " + quoted(examples + "powershell\\till.ps1"));
  }
  sharp("x86", "Framework");
  if (bitnesses[0] === 64) sharp("x64", "Framework64");
  power("PowerShell", "System32");
  if (is64Bit) power("PowerShell, 32-bit", "SysWOW64");
  tryLanguage("Python", "python -c \"import win32com.client; print('there')\"", /^there/m, "",
    "python " + quoted(examples + "python\\till.py"));
  tryLanguage("Node.js", "cd /d " + quoted(examples + "nodejs") + " && node -e \"require('koffi'); console.log('there')\"",
    /^there/m, "", "node " + quoted(examples + "nodejs\\till.cjs"));
  tryLanguage("Free Pascal", "fpc -iV", /\d+\.\d+/, "fpc -FE" + quoted(work) + " " + quoted(examples + "pascal\\till_late.pas"),
    quoted(work + "\\till_late.exe"));
  notThere("VBA and VB6", "they run in programs of their own");
}

function tryLanguage(title, probe, answer, build, sample) {
  if (!answer.test(run(probe).text)) return notThere(title, "it does not answer: " + probe);
  var built = build ? run(build) : {code: 0};
  if (built.code) return verdict(title, "it does not compile", built.text);
  withEmulator("", function () {
    var till = run(sample + " " + address);
    verdict(title, ended(till), till.text);
  });
}

// Installed into a folder of its own, upgraded while a program of it runs, sold with, and uninstalled.
function tryInstaller() {
  var setup = installer();
  if (!setup) return notThere("the installer", "it is not beside the folder " + release);
  var folder = work + "\\installed", scope = isAdministrator ? " /ALLUSERS" : " /CURRENTUSER";
  function install(title, code) {
    var log = work + "\\setup.log";
    var done = run(quoted(setup) + " /S" + scope + " /LOG=" + quoted(log) + " /D=" + folder).code;
    var wrong = done === code ? "" : "it ended with " + done + " instead of " + code;
    verdict(title, wrong, files.FileExists(log) ? read(log) : "no log");
    return !wrong;
  }
  var refusal = run(quoted(setup) + " /S /RECORD=1").code;
  verdict("the installer refuses a wrong switch", refusal === 6 ? "" : "it ended with " + refusal, "");
  if (!install("installing", 0)) return;
  eachBitness(function (bits) {
    tryScript("example till.js, installed", bits, folder + "\\examples\\jscript\\till.js");
  });
  var emulator = startEmulator(folder + "\\emulator\\mirvane-emulator.exe", "");
  install("upgrading while a program runs", 3010);
  emulator.Terminate();
  install("upgrading when it has ended", 0);
  var gone = run(quoted(folder + "\\uninstall.exe") + " /S _?=" + folder).code;
  var left = namesIn(folder).join("\r\n");
  verdict("uninstalling", gone === 0 && /^(uninstall.exe)?$/.test(left) ? "" : "it ended with " + gone, left);
}

// MirvaneEFT-1.0.0 belongs to MirvaneEFT-1.0.0-setup.exe, beside it or where the archive was unpacked into a folder of
// its name.
function installer() {
  var name = files.GetFileName(release) + "-setup.exe", folder = release;
  for (var i = 0; i < 2; ++i) {
    folder = files.GetParentFolderName(folder);
    if (files.FileExists(folder + "\\" + name)) return folder + "\\" + name;
  }
  return "";
}

function cleanUp() {
  for (var i = 0; i < folders.length; ++i) {
    if (!foldersWereThere[i] && files.FolderExists(folders[i])) files.DeleteFolder(folders[i], true);
    if (files.FolderExists(folders[i] + "\\MVETRY")) files.DeleteFolder(folders[i] + "\\MVETRY", true);
  }
  for (var tries = 0; tries < 20 && files.FolderExists(work); ++tries) {
    try { files.DeleteFolder(work, true); } catch (error) { pause(); }
  }
  var left = isRegistered() ? "the registration" : files.FolderExists(work) ? work : "";
  verdict("nothing is left behind", left, "");
}

// ---- What a trial does

// eachBitness(TRIAL): or with the one that the command line names.
function eachBitness(trial) {
  var only = WScript.Arguments.length ? Number(WScript.Arguments(0)) : 0;
  for (var i = 0; i < bitnesses.length; ++i) {
    if (!only || only === bitnesses[i]) trial(bitnesses[i]);
  }
}

// system(BITS): the folder of Windows' own programs, as a script host of Windows' own bitness sees it.
function system(bits) { return windows + (is64Bit && bits === 32 ? "\\SysWOW64\\" : "\\System32\\"); }
function scriptHost(bits) { return quoted(system(bits) + "cscript.exe") + " //nologo "; }

function registerAll(what, how) {
  if (!isAdministrator) how += "/n /i:user ";
  for (var i = 0; i < bitnesses.length; ++i) {
    var code = run(quoted(system(bitnesses[i]) + "regsvr32.exe") + " /s " + how +
      quoted(release + "\\win" + bitnesses[i] + "\\MirvaneEFT.dll")).code;
    verdict(what + " the " + bitnesses[i] + "-bit DLL" + (isAdministrator ? "" : " for this user"),
      code ? "regsvr32 ended with " + code : "", "");
  }
}

function isRegistered() {
  var keys = ["HKCR\\VarlenFiscalQ7734.fiscalTrevikModule\\CLSID\\",
              "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\MirvaneEFT\\InstallLocation",
              "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\MirvaneEFT\\InstallLocation"];
  for (var i = 0; i < keys.length; ++i) {
    try { shell.RegRead(keys[i]); return true; } catch (error) { }
  }
  return false;
}

// withEmulator(OPTIONS, TRIAL): a register of the trial's own listens at `address`.
function withEmulator(options, trial) {
  var emulator = startEmulator(release + "\\emulator\\mirvane-emulator.exe", options);
  try { trial(); } finally { emulator.Terminate(); }
}

function startEmulator(program, options) {
  var log = work + "\\emulator.log";
  for (var port = 19100; port < 19200; ++port) {
    if (files.FileExists(log)) files.DeleteFile(log, true);
    address = "127.0.0.1:" + port;
    var emulator = shell.Exec(quoted(program) + " --quiet --serial-number MVETRY --udp " + port + " --log " + quoted(log) +
      " --paper " + quoted(work + "\\paper.txt") + " " + options);
    // It ends at once where another program has the port.
    while (emulator.Status === 0) {
      if (files.FileExists(log)) return emulator;
      pause();
    }
  }
  throw new Error("the emulator does not start");
}

// run(COMMAND): its exit code, and what it wrote. Through cmd, for which Windows asks no questions about downloads.
function run(command) {
  var out = work + "\\out.txt";
  var code = shell.Run("cmd /s /c \"" + command + " >" + quoted(out) + " 2>&1\"", 0, true);
  return {code: code, text: files.FileExists(out) ? read(out) : ""};
}

// ended(RESULT): nothing when a till got to its end and had nothing to complain about, else what is wrong.
function ended(result) {
  var lines = trimmed(result.text).split(/\s*[\r\n]+/);
  if (/^FAIL/m.test(result.text)) return "it complains";
  return lines[lines.length - 1] === "ok" ? "" : "it broke off (" + result.code + ")";
}

// ---- Files

// Wine ends the value with a null character.
function environment(name) { return shell.ExpandEnvironmentStrings("%" + name + "%").replace(/\0/g, ""); }
function quoted(text) { return "\"" + text + "\""; }
function trimmed(text) { return text.replace(/^\s+|\s+$/g, ""); }

// Gives other programs a moment. Wine's script host cannot sleep.
function pause() {
  try { WScript.Sleep(100); } catch (error) { shell.Run("ping -n 1 127.0.0.1", 0, true); }
}

function read(file) {
  if (files.GetFile(file).Size === 0) return "";
  var text = readAs(file, 0);
  // The other encoding that is met, UTF-16, has a mark of two bytes in front.
  return text.charCodeAt(3) === 0 ? readAs(file, -1).replace(/^\uFEFF/, "") : text;
}

function readAs(file, format) {
  var stream = files.OpenTextFile(file, 1, false, format), text = stream.ReadAll();
  stream.Close();
  return text;
}

function write(name, text, wide) {
  var stream = files.CreateTextFile(work + "\\" + name, true, wide);
  stream.Write(text);
  stream.Close();
  return work + "\\" + name;
}

function namesIn(folder) {
  return trimmed(run("dir /b " + quoted(folder) + " 2>nul").text).split(/[\r\n]+/);
}

// ---- The report

function say(text) {
  report.WriteLine(text);
  WScript.Echo(text);
}

function line(outcome, title, why) {
  ++counts[outcome];
  var seconds = Math.round((new Date() - lastLine) / 1000);
  lastLine = new Date();
  say((outcome + "          ").substr(0, 11) + title + (why ? ": " + why : "") + (seconds > 4 ? " (" + seconds + " s)" : ""));
}

function passed(title) { line("passed", title, ""); }
function notThere(title, why) { line("not there", title, why); }

function failed(title, why, text) {
  line("FAILED", title, why);
  if (text) say("           | " + trimmed(text).replace(/\s*[\r\n]+/g, "\r\n           | "));
}

// verdict(TITLE, WHY, TEXT): passed when nothing is wrong; TEXT is what it said.
function verdict(title, why, text) {
  if (why) failed(title, why, text); else passed(title);
}
