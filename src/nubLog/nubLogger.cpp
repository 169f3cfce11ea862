#include <nubLog/nubLogger.h>

nubLogger &nubLogger::instance()
{
    static nubLogger logger;
    return logger;
}
