#include "automation/root.h"

#include <atomic>

namespace mirvane {
namespace {

std::atomic<int> liveObjects = 0;

}  // namespace

Object::Object() { ++liveObjects; }

Object::~Object() { --liveObjects; }

int Object::liveCount() { return liveObjects; }

}  // namespace mirvane
