#include <array>

#include "host/model/Host.h"

namespace quillmarch::host {

namespace {

std::array<Personality, 6> MakePersonalities() {
  std::array<Personality, 6> all;
  all[0].name = "powerpoint";
  all[1].name = "nested";
  all[1].flatGroups = false;
  all[2].name = "no-textframe2";
  all[2].hasTextFrame2 = false;
  all[3].name = "two-autosize-states";
  all[3].twoAutoSizeStates = true;
  all[4].name = "top-level-nodes";
  all[5].name = "wps";
  all[5].applicationName = u"WPS Presentation";
  all[5].applicationVersion = u"12.0";
  return all;
}

}  // namespace

const Personality* FindPersonality(const std::string& name) {
  static const std::array<Personality, 6> all = MakePersonalities();
  for (const Personality& personality : all) {
    if (personality.name == name) return &personality;
  }
  return nullptr;
}

}  // namespace quillmarch::host
