#include "run/document/RunTexts.h"

#include <algorithm>

namespace quillmarch::addin {

namespace {

constexpr std::size_t kFirstCapacity = 16;

template <typename T>
void MakeRoom(std::vector<T>& list) {
  if (list.size() == list.capacity()) list.reserve(std::max(kFirstCapacity, 2 * list.size()));
}

}  // namespace

void RunTexts::Add(TextUnit unit, Wide sourceText, UnitLocator locator) {
  unit.slideIndex = locator.slideIndex;
  unit.endsWithCr = locator.endsWithCr;
  // Only this can throw, so the lists stay of equal length.
  MakeRoom(units);
  MakeRoom(sourceTexts);
  MakeRoom(locators);
  units.push_back(std::move(unit));
  sourceTexts.push_back(std::move(sourceText));
  locators.push_back(std::move(locator));
}

void RunTexts::AddSlide(std::int32_t slide, UnitRange range) {
  MakeRoom(slideRanges);
  MakeRoom(slideNumbers);
  slideRanges.push_back(range);
  slideNumbers.push_back(slide);
}

void RunTexts::RegroupBySlide() {
  ClearSlides();
  for (std::size_t unit = 0; unit < units.size(); ++unit) {
    const std::int32_t slide = units[unit].slideIndex;
    if (slideNumbers.empty() || slideNumbers.back() != slide) AddSlide(slide, {unit, unit});
    slideRanges.back().second = unit + 1;
  }
  firstSlide = slideNumbers.empty() ? 1 : slideNumbers.front();
}

void RunTexts::ClearSlides() {
  slideRanges.clear();
  slideNumbers.clear();
}

void RunTexts::Clear() {
  units.clear();
  sourceTexts.clear();
  locators.clear();
  ClearSlides();
}

std::int32_t RunTexts::SlideNumberAt(std::int32_t index) const {
  const auto at = static_cast<std::size_t>(index);
  return at < slideNumbers.size() ? slideNumbers[at] : firstSlide + index;
}

}  // namespace quillmarch::addin
