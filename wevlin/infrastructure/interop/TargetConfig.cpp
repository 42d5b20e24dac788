#include "wevlin/infrastructure/interop/TargetConfig.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

TargetConfig::TargetConfig(std::string id, std::string name, std::string target)
    : id_(std::move(id)), name_(std::move(name)), target_(std::move(target)) {}

TargetConfig::TargetConfig(const TargetConfig& other) = default;

TargetConfig& TargetConfig::operator=(const TargetConfig& other) = default;

TargetConfig::~TargetConfig() = default;

std::string TargetConfig::GetId() { return id_; }

std::string TargetConfig::GetName() { return name_; }

std::string TargetConfig::GetTarget() { return target_; }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
