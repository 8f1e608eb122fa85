#include "app/BuildConfiguration.h"
#include "app/ProductionValues.h"

namespace brevanta {

BuildConfiguration buildConfiguration(const EnvironmentReader&, const std::filesystem::path&)
{
    return productionValues();
}

}
