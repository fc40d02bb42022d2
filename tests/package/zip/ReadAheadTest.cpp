#include "host/package/zip/ReadAhead.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <string>

namespace quillmarch::host {

namespace {

using Texts = ReadAhead<std::string>;
using Pieces = std::vector<std::pair<std::uint64_t, Texts::Work>>;

std::size_t SizeOf(const std::string& text) {
  return text.size();
}

TEST(ReadAhead, GivesEachResultOnceUnderItsKey) {
  Texts ahead(1000, SizeOf);
  Pieces pieces;
  for (std::uint64_t key = 1; key <= 3; ++key) {
    pieces.emplace_back(key, [key] { return "text " + std::to_string(key); });
  }
  ahead.Start(std::move(pieces));
  // What the worker has not begun is the caller's; either way nothing wrong comes back.
  for (const std::uint64_t key : {2u, 1u, 3u}) {
    const std::optional<std::string> text = ahead.Take(key);
    EXPECT_EQ(text.value_or("text " + std::to_string(key)), "text " + std::to_string(key));
    EXPECT_FALSE(ahead.Take(key).has_value());
  }
}

TEST(ReadAhead, WhatIsUnderWayIsWaitedFor) {
  std::promise<void> begun;
  std::promise<void> go;
  Texts ahead(1000, SizeOf);
  Pieces pieces;
  pieces.emplace_back(7, [&] {
    begun.set_value();
    go.get_future().wait();
    return std::string("seven");
  });
  ahead.Start(std::move(pieces));
  begun.get_future().wait();
  go.set_value();
  EXPECT_EQ(ahead.Take(7), "seven");
}

TEST(ReadAhead, WhatWasNeverStartedOrThrewIsLeftToTheCaller) {
  std::promise<void> begun;
  Texts ahead(1000, SizeOf);
  Pieces pieces;
  pieces.emplace_back(1, [&]() -> std::string {
    begun.set_value();
    throw std::runtime_error("no");
  });
  ahead.Start(std::move(pieces));
  begun.get_future().wait();
  EXPECT_FALSE(ahead.Take(1).has_value());
  EXPECT_FALSE(ahead.Take(2).has_value());
}

TEST(ReadAhead, BeginsNothingMoreWhileTooMuchWaitsToBeTaken) {
  std::promise<void> second;
  std::atomic<int> done{0};
  Texts ahead(10, SizeOf);
  Pieces pieces;
  pieces.emplace_back(1, [&] { return std::string(6, 'a'); });
  pieces.emplace_back(2, [&] {
    second.set_value();
    return std::string(6, 'b');
  });
  pieces.emplace_back(3, [&] {
    ++done;
    return std::string(6, 'c');
  });
  ahead.Start(std::move(pieces));
  second.get_future().wait();
  EXPECT_EQ(ahead.Take(2), std::string(6, 'b'));
  EXPECT_EQ(ahead.Take(1), std::string(6, 'a'));
  const bool taken = ahead.Take(3).has_value();
  EXPECT_EQ(done.load(), taken ? 1 : 0);
}

TEST(ReadAhead, DropBelowForgetsTheSmallerKeysAlone) {
  std::promise<void> last;
  Texts ahead(1000, SizeOf);
  Pieces pieces;
  pieces.emplace_back(1, [] { return std::string("one"); });
  pieces.emplace_back(2, [&] {
    last.set_value();
    return std::string("two");
  });
  ahead.Start(std::move(pieces));
  last.get_future().wait();
  ahead.DropBelow(2);
  EXPECT_FALSE(ahead.Take(1).has_value());
  EXPECT_EQ(ahead.Take(2), "two");
}

TEST(ReadAhead, GoesWithWorkStillWaiting) {
  std::promise<void> begun;
  std::atomic<int> runs{0};
  {
    Texts ahead(0, SizeOf);
    Pieces pieces;
    pieces.emplace_back(0, [&] {
      begun.set_value();
      ++runs;
      return std::string("first");
    });
    for (std::uint64_t key = 1; key < 5; ++key) {
      pieces.emplace_back(key, [&] {
        ++runs;
        return std::string("more");
      });
    }
    ahead.Start(std::move(pieces));
    begun.get_future().wait();
  }
  // The first result is never taken, so no second piece may begin.
  EXPECT_EQ(runs.load(), 1);
}

}  // namespace

}  // namespace quillmarch::host
