#include <nubLog/nubLogEngine.h>

nubLogEngine::nubLogEngine(int level, bool custom) : m_level(level), m_custom(custom) { }

QDebug nubLogEngine::stream() const { return QMessageLogger().debug(); }
