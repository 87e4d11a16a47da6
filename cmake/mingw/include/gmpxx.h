// SPDX-License-Identifier: MIT
// The two classes of GMP's C++ interface that the tests use, by Boost: there is no GMP for Windows
// among Debian's packages.
#pragma once

#include <boost/multiprecision/cpp_int.hpp>

using mpz_class = boost::multiprecision::number<boost::multiprecision::cpp_int_backend<>,
    boost::multiprecision::et_off>;
using mpq_class = boost::multiprecision::number<boost::multiprecision::cpp_rational_backend,
    boost::multiprecision::et_off>;

inline int sgn(const mpq_class& value)
{
	return value.sign();
}
