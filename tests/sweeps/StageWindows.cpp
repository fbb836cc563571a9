#include "Scene.h"
#include "Stage.h"

namespace Sweeps {

struct Stage::Parts
{
    Scene scene;
};

Stage::Stage() : parts_(std::make_unique<Parts>()) {}

Stage::~Stage() = default;

const Place& Stage::Get() const
{
    return parts_->scene.Get();
}

void Stage::Prepare(const Operation& operation) const
{
    Sweeps::Prepare(parts_->scene, operation);
}

std::vector<Operation> Stage::Operations()
{
    std::vector<Operation> operations;
    AddFileOperations(operations);
    AddRewriteOperations(operations);
    AddRegistryOperations(operations);
    AddSystemOperations(operations);
    AddTextOperations(operations);
    AddDocumentOperations(operations);
    AddInternalOperations(operations);
    return operations;
}

} // namespace Sweeps
