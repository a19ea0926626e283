#include "check_support.h"
