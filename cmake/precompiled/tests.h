// What most test programs include.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standard.h"
