#include "Stage.h"

namespace Sweeps {

struct Stage::Parts
{
    Place place;
};

Stage::Stage() : parts_(std::make_unique<Parts>()) {}

Stage::~Stage() = default;

const Place& Stage::Get() const
{
    return parts_->place;
}

void Stage::Prepare(const Operation&) const {}

std::vector<Operation> Stage::Operations()
{
    std::vector<Operation> operations;
    AddTextOperations(operations);
    AddDocumentOperations(operations);
    AddInternalOperations(operations);
    return operations;
}

} // namespace Sweeps
