#include "common/user_depends_data.h"

UserDependsData gUserDependsData;
