#include "QBLCore/QBLCustodian/QBLCustodianTask.hpp"

QBLCustodianTask::~QBLCustodianTask() = default;
