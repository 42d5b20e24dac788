// Base64 encoding and decoding of 1 KiB, 64 KiB and 16 MiB beside memcpy of
// the same data, the ceiling for any byte-to-byte transformation.
//
// Names: Base64/<Encode|Decode|Memcpy>/<bytes>. Bytes per iteration are the
// raw (decoded) size in every case, so a decode of 64 KiB reads 87,384
// characters and is credited with 65,536 bytes.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include "wevlin/infrastructure/interop/Base64.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::Base64;

std::string RawBytes(std::size_t size) {
  std::mt19937 random(42);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() & 0xff);
  return bytes;
}

void Encode(benchmark::State& state) {
  const std::string raw = RawBytes(static_cast<std::size_t>(state.range(0)));
  std::string encoded;
  for (auto _ : state) {
    Base64::EncodeString(raw, encoded);
    benchmark::DoNotOptimize(encoded.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void Decode(benchmark::State& state) {
  const std::string raw = RawBytes(static_cast<std::size_t>(state.range(0)));
  std::string encoded;
  Base64::EncodeString(raw, encoded);
  std::string decoded;
  Base64::DecodeString(encoded, decoded);
  if (decoded != raw) {
    state.SkipWithError("Base64 did not decode its own encoding");
    return;
  }
  for (auto _ : state) {
    Base64::DecodeString(encoded, decoded);
    benchmark::DoNotOptimize(decoded.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void Memcpy(benchmark::State& state) {
  const std::string raw = RawBytes(static_cast<std::size_t>(state.range(0)));
  std::string copy(raw.size(), '\0');
  for (auto _ : state) {
    std::memcpy(&copy[0], raw.data(), raw.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(1 << 10)->Arg(64 << 10)->Arg(16 << 20);
}

BENCHMARK(Encode)->Name("Base64/Encode")->Apply(Sizes);
BENCHMARK(Decode)->Name("Base64/Decode")->Apply(Sizes);
BENCHMARK(Memcpy)->Name("Base64/Memcpy")->Apply(Sizes);

}  // namespace
