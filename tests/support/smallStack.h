#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <pthread.h>
#include <string>

/// What tests of deep nesting share.
namespace Zamt::Testing {

inline std::string repeated(const std::string& piece, std::size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

/// What a host gives us at least. The main thread may have more.
constexpr std::size_t ordinaryStackBytes = std::size_t{8} << 20U;

/// Where a thousand levels are enough to show a recursion.
constexpr std::size_t tinyStackBytes = std::size_t{128} << 10U;

inline void onSmallStack(std::function<void()> work, std::size_t stackBytes = ordinaryStackBytes) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackBytes), 0);
  pthread_t thread{};
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

} // namespace Zamt::Testing
