#include "process/everyStage.h"
