#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

DataServiceDescriptor::DataServiceDescriptor() { RegisterFields(); }

DataServiceDescriptor::DataServiceDescriptor(std::string fqn, std::string version)
    : FQN(std::move(fqn)), SvcVersion(std::move(version)) {
  RegisterFields();
}

DataServiceDescriptor::DataServiceDescriptor(const DataServiceDescriptor& other)
    : DataContract(other), FQN(other.FQN), SvcVersion(other.SvcVersion) {
  RegisterFields();
}

DataServiceDescriptor& DataServiceDescriptor::operator=(const DataServiceDescriptor& other) {
  if (this != &other) {
    DataContract::operator=(other);
    FQN = other.FQN;
    SvcVersion = other.SvcVersion;
  }
  return *this;
}

DataServiceDescriptor::~DataServiceDescriptor() = default;

void DataServiceDescriptor::RegisterFields() {
  RegisterField("FQN", FQN);
  RegisterField("SvcVersion", SvcVersion);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
