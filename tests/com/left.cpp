// A program that leaves its calls without an end, ends threads inside them, and lets go of objects meanwhile. Its
// arguments are a subject, see `main`, and a device's serial and network port.

#include <csetjmp>

#include "tests/com/till.h"

namespace {

DWORD WINAPI comeInElsewhere(void*) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  createObject(L"fiscalTrevikModule");
  return 0;
}

void expectFree(const char* what) {
  const HANDLE thread = CreateThread(nullptr, 0, &comeInElsewhere, nullptr, 0, nullptr);
  if (WaitForSingleObject(thread, 20000) != WAIT_OBJECT_0)
    std::printf("FAIL %s: another thread is kept waiting\n", what);
}

std::jmp_buf outside;
void* rawOutside[5];
constexpr DWORD kOwnException = 0xE0001234;

LONG CALLBACK catchOutside(EXCEPTION_POINTERS* raised) {
  if (raised->ExceptionRecord->ExceptionCode != kOwnException) return EXCEPTION_CONTINUE_SEARCH;
  longjmp(outside, 1);
}

struct Leaving {
  const char* what;
  void (*leave)();
};

void leaveFrom(const wchar_t* windowClass, short (*outer)(), const Leaving& leaving) {
  Windows::beat = [&] {
    if (!stands(windowClass)) return;
    Windows::beat = nullptr;
    leaving.leave();
  };
  const bool isRaw = std::strcmp(leaving.what, "raw") == 0;
  if (isRaw ? __builtin_setjmp(rawOutside) == 0 : setjmp(outside) == 0) {
    outer();
    std::printf("FAIL %ls was not left by %s\n", windowClass, leaving.what);
  }
  if (!isRaw) expectFree(leaving.what);
  if (isRaw) till->sell(L"after");
  if (stands(windowClass)) std::printf("FAIL %ls stands after %s\n", windowClass, leaving.what);
  if (!Windows::areEnabled()) std::printf("FAIL windows are locked after %s from %ls\n", leaving.what, windowClass);
  const Environment before = Environment::now();
  kDelphi.set();
  const short result = till->sell(L"after");
  const Environment after = Environment::now();
  before.set();
  if (result != 0) std::printf("FAIL after %s from %ls: %d %ls\n", leaving.what, windowClass, result, outcome.text);
  expect("floating point after a call that was left", after == kDelphi);
  till->cancel();
}

/// A call from within that is left alone: the one that it came into goes on.
void leftWithin() {
  HostObject object([](VARIANT&) -> HRESULT { longjmp(outside, 1); });
  Windows::beat = [&] {
    if (stands(L"MirvaneWait") && setjmp(outside) == 0) till->sellSome(object.argument());
  };
  expect("a call goes on that another one was left in", till->sell(L"busy0") == 0);
  Windows::beat = nullptr;
}

void left() {
  start();
  AddVectoredExceptionHandler(1, &catchOutside);
  const Leaving raw{"raw", [] { __builtin_longjmp(rawOutside, 1); }};
  for (const Leaving& leaving : {Leaving{"jump", [] { longjmp(outside, 1); }},
                                 Leaving{"exception", [] { RaiseException(kOwnException, 0, 0, nullptr); }}}) {
    leaveFrom(
        L"MirvaneWait", [] { return till->sell(L"left"); }, leaving);
    leaveFrom(
        L"#32770", [] { return till->sell(L"refused", false); }, leaving);
    leaveFrom(
        L"MirvaneJournal", [] { return till->readJournal(); }, leaving);
  }
  leftWithin();
  // Nobody learns of this one before the next call.
  leaveFrom(
      L"MirvaneWait", [] { return till->sell(L"left"); }, raw);
}

DWORD WINAPI letGoOf(void* facade) {
  static_cast<Till*>(facade)->release();
  return 0;
}

/// Facades that end while one of them sells. Each row is what happens meanwhile, with `till` and a second one.
void released() {
  start();
  static Till* other;
  static HANDLE collector;
  const struct {
    const char* what;
    const wchar_t* sale;
    void (*meanwhile)();
    short next;
  } rows[] = {
      {"its own facade, and another one connects", L"busy1",
       [] {
         till->release();
         expect("Connect_ from within", other->connect() == 0);
       },
       0},
      {"another one connects, and then its own facade goes", L"busy2",
       [] {
         expect("Connect_ from within", other->connect() == 0);
         till->release();
       },
       100},
      {"a garbage collector's thread lets go of it, which waits for nobody", L"busy3",
       [] {
         collector = CreateThread(nullptr, 0, &letGoOf, till, 0, nullptr);
         expect("the collector goes on", WaitForSingleObject(collector, 20000) == WAIT_OBJECT_0);
         expect("Connect_ from within", other->connect() == 0);
       },
       0},
  };
  for (const auto& row : rows) {
    till->release();
    till = new Till;
    till->connect();
    other = new Till;
    Windows::beat = [&] {
      if (!stands(L"MirvaneWait")) return;
      Windows::beat = nullptr;
      row.meanwhile();
    };
    if (till->sell(row.sale) != 0) std::printf("FAIL %s ends the sale: %d\n", row.what, outcome.result);
    if (Windows::beat) std::printf("FAIL %ls did not wait\n", row.sale);
    till = other;
    const short next = till->sell(L"after");
    if (next != row.next) std::printf("FAIL %s: the next sale gives %d\n", row.what, next);
  }
}

HANDLE isInside;
bool endsItself;

void CALLBACK beatElsewhere(HWND, UINT, UINT_PTR, DWORD) {
  static bool isTold = false;
  if (isTold && endsItself) ExitThread(0);
  isTold = SetEvent(isInside) != FALSE;
}

DWORD WINAPI sellElsewhere(void*) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Till own;
  Outcome its;
  SetTimer(nullptr, 0, 100, &beatElsewhere);
  call(own.module, L"ItemSale", itemSale(number(1), number(1), its, true, L"left"));
  std::puts("FAIL a thread came back that should have ended inside");
  return 0;
}

/// Threads that end inside: one by itself, while another one waits for its turn, and one that is ended.
void ended() {
  start();
  isInside = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  for (const bool itself : {true, false}) {
    endsItself = itself;
    const HANDLE thread = CreateThread(nullptr, 0, &sellElsewhere, nullptr, 0, nullptr);
    expect("the thread is inside", WaitForSingleObject(isInside, 20000) == WAIT_OBJECT_0);
    if (!itself) TerminateThread(thread, 0);
    if (till->sell(L"after") != 0) std::printf("FAIL the sale after it: %d %ls\n", outcome.result, outcome.text);
  }
}

}  // namespace

int main(int, char** arguments) {
  constexpr Subject kSubjects[] = {{"left", left}, {"released", released}, {"ended", ended}};
  return runSubject(kSubjects, arguments);
}
