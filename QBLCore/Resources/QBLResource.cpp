#include "QBLCore/Resources/QBLResource.hpp"

QBLResource::QBLResource() = default;

QBLResource::~QBLResource() = default;
