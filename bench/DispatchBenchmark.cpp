// The library's cost of one call across the boundary, with the page and the
// service answering at once:
//
//   Dispatch/HostMethod/<services>   HostAPI::tavoHostMethod with a 100-byte
//                                    payload to an echo service, the host
//                                    manager holding 10, 100 or 10,000
//                                    services (the echo one registered last)
//   Dispatch/WebMethod               HostControlInstance::InvokeWebMethod of
//                                    a page service with a 100-byte payload,
//                                    through a web control that answers at
//                                    once
//
// Time per iteration is the cost of one call.

#include <benchmark/benchmark.h>

#include <string>

#include "support/HostedWorld.h"

namespace {

using wevlin_bench::HostedWorld;

// A 100-byte JSON payload.
std::string Payload() {
  std::string payload = "{\"Version\": \"_2014_07\", \"Data\": \"";
  payload += std::string(100 - payload.size() - 2, 'x');
  payload += "\"}";
  return payload;
}

void HostMethod(benchmark::State& state) {
  const int services = static_cast<int>(state.range(0));
  HostedWorld& world = HostedWorld::Shared(services);
  const std::string payload = Payload();
  const std::string& descriptor = world.EchoDescriptorJson();
  if (world.Api().tavoHostMethod(descriptor, payload) != payload) {
    state.SkipWithError("the echo service did not answer its payload");
    return;
  }
  for (auto _ : state) {
    std::string answer = world.Api().tavoHostMethod(descriptor, payload);
    benchmark::DoNotOptimize(answer);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  state.counters["services"] = world.ServiceCount();
}

void WebMethod(benchmark::State& state) {
  HostedWorld& world = HostedWorld::Shared(10);
  const std::string payload = Payload();
  world.Page().MethodReply = payload;
  if (world.Instance().InvokeWebMethod(&world.PageEcho(), payload) != payload) {
    state.SkipWithError("the page did not answer its reply");
    return;
  }
  for (auto _ : state) {
    std::string answer = world.Instance().InvokeWebMethod(&world.PageEcho(), payload);
    benchmark::DoNotOptimize(answer);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

BENCHMARK(HostMethod)
    ->Name("Dispatch/HostMethod")
    ->ArgName("services")
    ->Arg(10)
    ->Arg(100)
    ->Arg(10000);
BENCHMARK(WebMethod)->Name("Dispatch/WebMethod");

}  // namespace
