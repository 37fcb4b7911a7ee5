#!/usr/bin/env python3
"""Differential test of talvex::core::Decimal against Python's decimal module.

Usage: decimal_oracle_test.py <path-to-decimal_oracle_driver>

Python's decimal module, with a context shaped like Decimal (38 digits, halves away from zero,
exponents -128..127 for the last digit, no clamping), is the oracle. Every case is generated from
a fixed seed, so a failure reproduces exactly. Each operation is sent to one run of the driver
through a pipe; the driver answers with one line per case.
"""

import random
import re
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor
from decimal import (
    ROUND_HALF_UP,
    Context,
    Decimal as PyDecimal,
    DivisionByZero,
    InvalidOperation,
    Overflow,
    Underflow,
)

CASES_PER_OPERATION = 200_000
SEED = 0x7A1E5
MAX_REPORTED = 20

MAX_DIGITS = 38
MIN_EXPONENT = -128
MAX_EXPONENT = 127
# Largest adjusted exponent (exponent of the leading digit): (10^38 - 1) x 10^127.
MAX_ADJUSTED = MAX_DIGITS - 1 + MAX_EXPONENT
# Smallest adjusted exponent of a number with all 38 digits; below it results are subnormal.
MIN_NORMAL_ADJUSTED = MIN_EXPONENT + MAX_DIGITS - 1

# Emin is chosen so that Etiny (Emin - prec + 1) is our smallest exponent, -128.
ARITHMETIC = Context(prec=MAX_DIGITS, rounding=ROUND_HALF_UP, Emax=MAX_ADJUSTED,
                     Emin=MIN_NORMAL_ADJUSTED, clamp=0, traps=[])
# Rounding to a scale has no precision limit; this context is wide enough to be exact.
WIDE = Context(prec=500, rounding=ROUND_HALF_UP, Emax=10_000, Emin=-10_000, clamp=0, traps=[])

POW10 = [10**i for i in range(400)]

# The accepted text grammar: sign, digits with at most one point, optional exponent. ASCII only.
TEXT_PATTERN = re.compile(r"([+-]?)([0-9]*)(?:\.([0-9]*))?(?:[eE]([+-]?[0-9]+))?")


# ---------------------------------------------------------------------------------------------
# Expected results


def plainText(value):
    """Decimal's text form: no exponent, no trailing zeros after the point, no negative zero."""
    if value.is_nan():
        return "NaN"
    if value.is_zero():
        return "0"
    text = format(value, "f")
    if "." in text:
        text = text.rstrip("0").rstrip(".")
    return text


def arithmeticResult(operation, a, b):
    if a.is_nan() or b.is_nan():
        return "NaN"
    ARITHMETIC.clear_flags()
    result = operation(a, b)
    flags = ARITHMETIC.flags
    if flags[DivisionByZero] or flags[InvalidOperation]:
        return "ERR DivideByZero"
    if flags[Overflow]:
        return "ERR Overflow"
    if result.is_zero():
        # A zero that is not exact was a nonzero result too small to represent.
        return "ERR Underflow" if flags[Underflow] else "0"
    return plainText(result)


ARITHMETIC_OPERATIONS = {
    "add": ARITHMETIC.add,
    "sub": ARITHMETIC.subtract,
    "mul": ARITHMETIC.multiply,
    "div": ARITHMETIC.divide,
}


def roundResult(a, scale):
    """The rounded text followed by whether the value changed numerically."""
    if a.is_nan():
        return "NaN unchanged"
    if a.as_tuple().exponent >= -scale:
        return plainText(a) + " unchanged"
    rounded = a.quantize(PyDecimal((0, (1,), -scale)), rounding=ROUND_HALF_UP, context=WIDE)
    if not rounded.is_zero() and rounded.adjusted() > MAX_ADJUSTED:
        return "ERR Overflow"
    return plainText(rounded) + (" changed" if rounded != a else " unchanged")


def textResult(text):
    match = TEXT_PATTERN.fullmatch(text)
    if match is None:
        return "NaN"
    sign, whole, fraction, exponentText = match.groups()
    fraction = fraction or ""
    if not whole and not fraction:
        return "NaN"
    digits = (whole + fraction).lstrip("0")
    if not digits:
        return "0"
    exponent = int(exponentText or "0") - len(fraction)
    significant = digits.rstrip("0")
    exponent += len(digits) - len(significant)
    digits = significant
    adjusted = exponent + len(digits) - 1
    # Far outside the range the answer is known without building the number (and the exponent
    # text may be longer than anything the decimal module accepts).
    if adjusted > MAX_ADJUSTED + 10:
        return "NaN"
    if adjusted < MIN_EXPONENT - 10:
        return "0"
    exact = PyDecimal(f"{sign}{digits}E{exponent}")
    ARITHMETIC.clear_flags()
    result = ARITHMETIC.create_decimal(exact)
    if ARITHMETIC.flags[Overflow]:
        return "NaN"
    return plainText(result)


# ---------------------------------------------------------------------------------------------
# Operands. Arithmetic operands are written so that the driver reads them exactly: at most 38
# digits and an exponent in range.


def operandText(negative, mantissa, exponent):
    text = ("-" if negative else "") + str(mantissa)
    return f"{text}E{exponent}" if exponent else text


def digitCount(n):
    return len(str(n)) if n else 1


def randomDigits(rng, count):
    return rng.randrange(POW10[count - 1], POW10[count]) if count > 1 else rng.randrange(1, 10)


def patternMantissa(rng):
    k = rng.randint(1, MAX_DIGITS)
    kind = rng.randrange(6)
    if kind == 0:
        return POW10[k] - 1  # all nines
    if kind == 1:
        return POW10[k - 1]
    if kind == 2:
        return 5 * POW10[k - 1]
    if kind == 3:
        return 5 * POW10[k - 1] + rng.choice((-1, 1)) if k > 1 else 5
    if kind == 4:
        j = rng.randint(1, k)
        return randomDigits(rng, j) * POW10[k - j]  # trailing zeros
    return rng.randint(1, 12)


def randomMantissa(rng):
    r = rng.random()
    if r < 0.45:
        return randomDigits(rng, MAX_DIGITS)
    if r < 0.80:
        return randomDigits(rng, rng.randint(1, MAX_DIGITS))
    return patternMantissa(rng)


def randomExponent(rng):
    r = rng.random()
    if r < 0.3:
        return rng.randint(-6, 6)
    if r < 0.65:
        return rng.randint(-40, 40)
    return rng.randint(MIN_EXPONENT, MAX_EXPONENT)


def exponentForAdjusted(adjusted, mantissa):
    """The exponent giving `mantissa` this adjusted exponent, or None when out of range."""
    exponent = adjusted - digitCount(mantissa) + 1
    return exponent if MIN_EXPONENT <= exponent <= MAX_EXPONENT else None


# The undefined value, as an operand.
NAN = "NaN"


def number(negative, mantissa, exponent):
    assert 0 <= mantissa < POW10[MAX_DIGITS] and MIN_EXPONENT <= exponent <= MAX_EXPONENT
    return operandText(negative, mantissa, exponent)


def randomSign(rng):
    return rng.random() < 0.5


def randomOperand(rng):
    r = rng.random()
    if r < 0.01:
        return NAN
    if r < 0.04:
        return number(randomSign(rng), 0, randomExponent(rng))
    return number(randomSign(rng), randomMantissa(rng), randomExponent(rng))


# ---------------------------------------------------------------------------------------------
# Case generators. Each returns the two operand texts.


def pairGeneral(rng):
    return randomOperand(rng), randomOperand(rng)


def pairFullDigits(rng):
    a = number(randomSign(rng), randomDigits(rng, MAX_DIGITS), rng.randint(-20, 20))
    b = number(randomSign(rng), randomDigits(rng, MAX_DIGITS), rng.randint(-20, 20))
    return a, b


def pairWithAdjustedGap(rng, gaps):
    """Two numbers whose leading digits differ by `gap` orders of magnitude."""
    while True:
        ma, mb = randomMantissa(rng), randomMantissa(rng)
        gap = rng.choice(gaps)
        adjustedA = rng.randint(MIN_EXPONENT, MAX_ADJUSTED)
        ea = exponentForAdjusted(adjustedA, ma)
        eb = exponentForAdjusted(adjustedA - gap, mb)
        if ea is not None and eb is not None:
            a, b = number(randomSign(rng), ma, ea), number(randomSign(rng), mb, eb)
            return (a, b) if rng.random() < 0.5 else (b, a)


NEAR_GAPS = list(range(0, 6))
FAR_GAPS = list(range(35, 46))
HUGE_GAPS = list(range(46, 80)) + [100, 150, 200, 250, 290]


def pairNearGap(rng):
    return pairWithAdjustedGap(rng, NEAR_GAPS)


def pairFarGap(rng):
    return pairWithAdjustedGap(rng, FAR_GAPS)


def pairHugeGap(rng):
    return pairWithAdjustedGap(rng, HUGE_GAPS)


def pairSumTie(rng):
    """Sums and differences whose exact result has 39 digits, the last a 5: a tie at the 39th."""
    exponent = rng.randint(MIN_EXPONENT, MAX_EXPONENT - 1)
    big = randomDigits(rng, MAX_DIGITS)
    small = 10 * randomDigits(rng, rng.randint(1, 37)) + 5 if rng.random() < 0.7 else 5
    a = number(randomSign(rng), big, exponent + 1)
    b = number(randomSign(rng), small, exponent)
    return (a, b) if rng.random() < 0.5 else (b, a)


def pairSumNearTie(rng):
    """Like a tie, but a unit far below the 39th digit breaks it one way or the other."""
    depth = rng.randint(2, 30)
    exponent = rng.randint(MIN_EXPONENT, MAX_EXPONENT - depth)
    big = randomDigits(rng, MAX_DIGITS)
    small = 5 * POW10[depth - 1] + rng.choice((-1, 1))
    return number(randomSign(rng), big, exponent + depth), number(randomSign(rng), small, exponent)


def signAdding(negative, subtract):
    """The sign for b that makes the magnitudes of a and b add up under the operation."""
    return negative != subtract


def pairCarry(rng, subtract):
    """Carries and borrows through every digit: 99...9 + small, 10...0 - small."""
    k = rng.randint(1, MAX_DIGITS)
    exponent = rng.randint(MIN_EXPONENT + 45, MAX_EXPONENT)
    negative = randomSign(rng)
    depth = rng.randint(0, 42)
    small = rng.choice((1, 5, 4, 6, 9, 49, 50, 51, randomDigits(rng, rng.randint(1, 38))))
    if rng.random() < 0.5:
        a = number(negative, POW10[k] - 1, exponent)
        b = number(signAdding(negative, subtract), small, exponent - depth)
    else:
        a = number(negative, POW10[k - 1], exponent)
        b = number(not signAdding(negative, subtract), small, exponent - depth)
    return a, b


def pairCancel(rng, subtract):
    """Nearly equal magnitudes that cancel, leaving few digits."""
    mantissa = randomDigits(rng, rng.randint(1, MAX_DIGITS))
    exponent = randomExponent(rng)
    delta = rng.randint(-1000, 1000)
    other = max(0, min(POW10[MAX_DIGITS] - 1, mantissa + delta))
    negative = randomSign(rng)
    return (number(negative, mantissa, exponent),
            number(not signAdding(negative, subtract), other, exponent))


def pairSumNearOverflow(rng, subtract):
    negative = randomSign(rng)
    top = POW10[MAX_DIGITS] - rng.choice((1, 1, 2, 3, 20))
    # A gap of -1 puts b's leading digit on a's last one.
    gap = rng.randint(-1, 3)
    small = rng.choice((5, 4, 6, 49, 50, 51, 499999, 500000, 500001,
                        randomDigits(rng, rng.randint(1, 38))))
    a = number(negative, top, MAX_EXPONENT)
    b = number(signAdding(negative, subtract), small, MAX_EXPONENT - gap - digitCount(small))
    return a, b


def pairSumTiny(rng):
    ma, mb = randomMantissa(rng), randomMantissa(rng)
    ea = rng.randint(MIN_EXPONENT, MIN_EXPONENT + 10)
    eb = rng.randint(MIN_EXPONENT, MIN_EXPONENT + 10)
    return number(randomSign(rng), ma, ea), number(randomSign(rng), mb, eb)


def pairWithZeroOrNan(rng):
    edge = rng.choice((NAN, "0", "-0", "0E-128", "0E127", "0E5", NAN))
    other = randomOperand(rng)
    return (edge, other) if rng.random() < 0.5 else (other, edge)


def splitExponent(rng, total):
    """Two exponents in range adding up to `total`, or None."""
    low = max(MIN_EXPONENT, total - MAX_EXPONENT)
    high = min(MAX_EXPONENT, total - MIN_EXPONENT)
    if low > high:
        return None
    ea = rng.randint(low, high)
    return ea, total - ea


def pairProductNear(rng, adjustedTargets):
    """A product whose exact result has its leading digit near one of the targets."""
    while True:
        ma, mb = randomMantissa(rng), randomMantissa(rng)
        target = rng.choice(adjustedTargets)
        # adjusted(a * b) is adjusted(a) + adjusted(b), or one more.
        total = target - (digitCount(ma) - 1) - (digitCount(mb) - 1)
        split = splitExponent(rng, total)
        if split is not None:
            return number(randomSign(rng), ma, split[0]), number(randomSign(rng), mb, split[1])


def pairQuotientNear(rng, adjustedTargets):
    """A quotient whose exact result has its leading digit near one of the targets."""
    while True:
        ma, mb = randomMantissa(rng), randomMantissa(rng)
        target = rng.choice(adjustedTargets)
        # adjusted(a / b) is adjusted(a) - adjusted(b), or one less.
        difference = target - (digitCount(ma) - 1) + (digitCount(mb) - 1)
        eb = rng.randint(MIN_EXPONENT, MAX_EXPONENT)
        ea = difference + eb
        if MIN_EXPONENT <= ea <= MAX_EXPONENT:
            return number(randomSign(rng), ma, ea), number(randomSign(rng), mb, eb)


OVERFLOW_TARGETS = list(range(MAX_ADJUSTED - 3, MAX_ADJUSTED + 3))
SUBNORMAL_EDGE_TARGETS = list(range(MIN_NORMAL_ADJUSTED - 3, MIN_NORMAL_ADJUSTED + 3))
SUBNORMAL_TARGETS = list(range(MIN_EXPONENT + 1, MIN_NORMAL_ADJUSTED - 2))
UNDERFLOW_TARGETS = list(range(MIN_EXPONENT - 4, MIN_EXPONENT + 3))


def pairProductTie(rng):
    """A product with exactly 39 digits ending in 5, so the 39th digit is a tie."""
    while True:
        mb = rng.choice((3, 7, 9, 11, 13, 15, 17, 19, 21, 33, 99, 101, 125, 999))
        digits = MAX_DIGITS + 1 - digitCount(mb) + rng.randint(0, 1)
        if digits > MAX_DIGITS or digits < 2:
            continue
        ma = 10 * randomDigits(rng, digits - 1) + 5
        product = ma * mb
        if digitCount(product) != MAX_DIGITS + 1:
            continue
        total = rng.randint(MIN_EXPONENT + 30, MAX_EXPONENT - 30)
        ea, eb = splitExponent(rng, total)
        a, b = number(randomSign(rng), ma, ea), number(randomSign(rng), mb, eb)
        return (a, b) if rng.random() < 0.5 else (b, a)


def pairProductSubnormal(rng):
    """A product below the normal range, cut at the 10^-128 digit; often an exact tie there."""
    while True:
        if rng.random() < 0.5:
            ma = 10 * randomDigits(rng, rng.randint(1, 20)) + 5
            mb = 2 * rng.randint(0, 10**rng.randint(0, 15)) + 1
        else:
            ma, mb = randomMantissa(rng), randomMantissa(rng)
        product = ma * mb
        # A cut of one digit leaves a trailing 5 as the first digit removed: an exact tie.
        cut = 1 if rng.random() < 0.4 else rng.randint(1, digitCount(product) + 1)
        split = splitExponent(rng, MIN_EXPONENT - cut)
        if split is not None:
            return number(randomSign(rng), ma, split[0]), number(randomSign(rng), mb, split[1])


def pairQuotientTie(rng, subnormal):
    """m / 2^k has the exact value m * 5^k * 10^-k; with 39 digits ending in 5 it is a tie."""
    while True:
        k = rng.randint(1, 55)
        power = 5**k
        limit = (MAX_DIGITS if subnormal else MAX_DIGITS + 1) - digitCount(power)
        if limit < 1:
            continue
        m = 2 * rng.randrange(POW10[limit - 1] // 2 if limit > 1 else 0,
                              POW10[limit] // 2) + 1
        quotient = m * power
        if not subnormal and digitCount(quotient) != MAX_DIGITS + 1:
            continue
        # Common factors keep the operands from always being a power of two over a mantissa.
        factor = rng.choice((1, 1, 3, 7, 10, 999))
        ma, mb = m * factor, (2**k) * factor
        if digitCount(ma) > MAX_DIGITS:
            continue
        if subnormal:
            # Put the last (five) digit of the quotient just below the 10^-128 digit.
            difference = MIN_EXPONENT - 1 + k
        else:
            difference = rng.randint(-60, 60)
        eb = rng.randint(MIN_EXPONENT, MAX_EXPONENT)
        ea = difference + eb
        if MIN_EXPONENT <= ea <= MAX_EXPONENT:
            return number(randomSign(rng), ma, ea), number(randomSign(rng), mb, eb)


def pairQuotientExact(rng):
    """a = b * q exactly, so the quotient needs no rounding."""
    while True:
        mb = randomDigits(rng, rng.randint(1, 19))
        q = randomDigits(rng, rng.randint(1, 19))
        ma = mb * q
        if digitCount(ma) > MAX_DIGITS:
            continue
        eb = rng.randint(-60, 60)
        ea = eb + rng.randint(-60, 60)
        if MIN_EXPONENT <= ea <= MAX_EXPONENT:
            return number(randomSign(rng), ma, ea), number(randomSign(rng), mb, eb)


def pairQuotientSmallDivisor(rng):
    """Repeating quotients such as 2/3 and 1/7, which must round at the 38th digit."""
    mb = rng.choice((3, 6, 7, 9, 11, 12, 13, 17, 19, 23, 81, 97, 101, 999, 7777777))
    ma = rng.randint(1, 10**rng.randint(1, 38) - 1)
    return (number(randomSign(rng), ma, rng.randint(-30, 30)),
            number(randomSign(rng), mb, rng.randint(-30, 30)))


def pairDivideByZero(rng):
    zero = rng.choice(("0", "-0", "0E-128", "0E127", "0E3"))
    numerator = rng.choice((randomOperand(rng), "0", "-0", "0E100", NAN))
    if rng.random() < 0.2:
        return zero, NAN
    return numerator, zero


def pairPowersOfTen(rng):
    a = number(randomSign(rng), POW10[rng.randint(0, 37)], randomExponent(rng))
    b = number(randomSign(rng), POW10[rng.randint(0, 37)], randomExponent(rng))
    return a, b


def mixture(*weighted):
    total = sum(weight for weight, _ in weighted)
    cumulative, acc = [], 0.0
    for weight, generator in weighted:
        acc += weight / total
        cumulative.append((acc, generator))

    def choose(rng):
        r = rng.random()
        for bound, generator in cumulative:
            if r < bound:
                return generator(rng)
        return cumulative[-1][1](rng)

    return choose


def additionGenerator(subtract):
    return mixture(
        (20, pairGeneral),
        (10, pairFullDigits),
        (10, pairNearGap),
        (10, pairFarGap),
        (5, pairHugeGap),
        (8, pairSumTie),
        (6, pairSumNearTie),
        (8, lambda rng: pairCarry(rng, subtract)),
        (6, lambda rng: pairCancel(rng, subtract)),
        (6, lambda rng: pairSumNearOverflow(rng, subtract)),
        (4, pairSumTiny),
        (5, pairWithZeroOrNan),
        (2, pairPowersOfTen),
    )


MULTIPLY = mixture(
    (20, pairGeneral),
    (15, pairFullDigits),
    (10, pairProductTie),
    (10, lambda rng: pairProductNear(rng, OVERFLOW_TARGETS)),
    (8, lambda rng: pairProductNear(rng, SUBNORMAL_EDGE_TARGETS)),
    (8, lambda rng: pairProductNear(rng, SUBNORMAL_TARGETS)),
    (8, lambda rng: pairProductNear(rng, UNDERFLOW_TARGETS)),
    (10, pairProductSubnormal),
    (5, pairWithZeroOrNan),
    (3, pairPowersOfTen),
    (3, pairFarGap),
)

DIVIDE = mixture(
    (20, pairGeneral),
    (15, pairFullDigits),
    (8, lambda rng: pairQuotientTie(rng, False)),
    (5, lambda rng: pairQuotientTie(rng, True)),
    (6, pairQuotientExact),
    (6, pairQuotientSmallDivisor),
    (8, lambda rng: pairQuotientNear(rng, OVERFLOW_TARGETS)),
    (6, lambda rng: pairQuotientNear(rng, SUBNORMAL_EDGE_TARGETS)),
    (6, lambda rng: pairQuotientNear(rng, SUBNORMAL_TARGETS)),
    (8, lambda rng: pairQuotientNear(rng, UNDERFLOW_TARGETS)),
    (4, pairDivideByZero),
    (4, pairWithZeroOrNan),
    (3, pairPowersOfTen),
    (3, pairFarGap),
)

FIXED_PAIRS = [
    (f"{POW10[38] - 1}", "1"),
    (f"{POW10[38] - 1}", "5E-1"),
    (f"{POW10[38] - 1}", "49999999999999999999999999999999999999E-38"),
    (f"{POW10[38] - 1}E127", "5E126"),
    (f"{POW10[38] - 1}E127", "4E126"),
    (f"{POW10[38] - 1}E127", f"{POW10[38] - 1}E127"),
    (f"-{POW10[38] - 1}E127", f"{POW10[38] - 1}E127"),
    ("1E-128", "1E-128"),
    ("1E-128", "-1E-128"),
    ("5E-65", "1E-64"),
    ("49999999999999999999999999999999999999E-65", "1E-101"),
    ("5E-128", "10"),
    ("4E-128", "10"),
    ("1E-128", "2"),
    ("1E-128", "3"),
    ("3E-128", "2"),
    ("1", "3"),
    ("2", "3"),
    ("-2", "3"),
    ("1", "7"),
    ("1E127", "1E-128"),
    ("1E-128", "1E127"),
    ("1E127", "1E127"),
    ("1E127", "1E37"),
    ("1E127", "1E38"),
    ("1", "0"),
    ("0", "0"),
    ("-1", "0"),
    ("NaN", "0"),
    ("0", "NaN"),
    ("NaN", "NaN"),
    ("0", "1"),
    ("-0", "-0"),
    ("1", "1"),
    ("1", "-1"),
]


# ---------------------------------------------------------------------------------------------
# Rounding to a scale.


def roundOperand(rng, scale):
    r = rng.random()
    negative = randomSign(rng)
    if r < 0.01:
        return NAN
    if r < 0.03:
        return number(negative, 0, rng.randint(-40, 40))
    if r < 0.40:
        mantissa = randomMantissa(rng)
        return number(negative, mantissa, rng.randint(-45, 25))
    if r < 0.55:
        # An exact tie: the first digit beyond the scale is a 5 followed by nothing but zeros.
        depth = rng.randint(1, 6)
        high = rng.randint(0, 10**rng.randint(0, 37 - depth) - 1) if rng.random() < 0.9 else 0
        mantissa = (10 * high + 5) * POW10[depth - 1]
        return number(negative, mantissa, -scale - depth)
    if r < 0.65:
        # Just below or above a tie.
        depth = rng.randint(2, 20)
        high = rng.randint(0, 10**rng.randint(0, 37 - depth) - 1)
        mantissa = (10 * high + 5) * POW10[depth - 1] + rng.choice((-1, 1))
        return number(negative, mantissa, -scale - depth)
    if r < 0.75:
        # 9.99...95 and friends: rounding up carries into a new digit.
        depth = rng.randint(1, 7)
        half = 5 * POW10[depth - 1]
        tail = rng.choice((half, half - 1, half + 1 if depth > 1 else half, POW10[depth] - 1))
        mantissa = (POW10[rng.randint(0, MAX_DIGITS - depth)] - 1) * POW10[depth] + tail
        return number(negative, mantissa, -scale - depth)
    if r < 0.85:
        # Already has no digits beyond the scale, possibly written with trailing zeros.
        mantissa = randomMantissa(rng)
        return number(negative, mantissa, rng.randint(-scale, min(MAX_EXPONENT, -scale + 100)))
    if r < 0.93:
        mantissa = randomMantissa(rng)
        return number(negative, mantissa, randomExponent(rng))
    mantissa = randomMantissa(rng)
    # Trailing zeros that make the digits beyond the scale all zero.
    zeros = rng.randint(1, 10)
    mantissa = (mantissa % POW10[MAX_DIGITS - zeros]) * POW10[zeros] or POW10[zeros]
    return number(negative, mantissa, -scale - rng.randint(1, zeros))


FIXED_ROUNDS = [
    ("1E100", 0), ("1E127", -10), ("1E-128", 20), ("5E-21", 20), ("-5E-21", 20), ("4E-21", 20),
    ("0.5", 0), ("-0.5", 0), ("1.5", 0), ("2.5", 0), ("0.05", 1), ("0.949", 1), ("9.995", 2),
    ("-9.995", 2), ("99999999999999999999999999999999999999E-38", 0),
    ("99999999999999999999999999999999999999E-1", -10), ("150", -2), ("149", -2), ("50", -2),
    ("1.50", 1), ("1.50", 2), ("0", 5), ("NaN", 3), ("NaN", -3), ("0E-128", 0),
]


# ---------------------------------------------------------------------------------------------
# Text.

INVALID_TEXTS = [
    "1e", ".", "", "1.2.3", " 1", "1 ", "abc", "1e5x", "+", "-", "e5", "E5", "1e+", "1e-",
    "+-1", "--1", "++1", "1,5", "1e5.5", "1e5e5", "0x10", "inf", "Infinity", "-Infinity", "nan",
    "NaN", "sNaN", "1_000", "\u0661", "\uff11", "1\t", "\t1", "1.e", ".e1", "-.", "+.", "-.e5",
    "1.5.", "..5", "1..5", "1e 5", "1 e5", "- 1", "1d5", "1f", "1.0f", "\u00bd", "1E+-5",
    "1E--5", "١٢", "0b101", "1/2", "5%", "$5", "1e5 ", "1e05x", ".5.", "e", "-e", "5-",
]

ADVERSARIAL_TEXTS = [
    "5.", ".5", "-5.", "-.5", "+.5", "+5.", "0", "-0", "+0", "0.", ".0", "-0.0", "00000",
    "0e999999", "-0e-999999", "0.000e5", "1e0", "1e+0", "1e-0", "1E127", "1E164", "1E165",
    "9" * 38 + "E127", "9" * 39 + "E126", "9" * 38 + "4E126", "9" * 38 + "5E126",
    "1e-128", "1e-129", "5e-129", "4e-129", "4" + "9" * 60 + "e-189", "0.5e-128",
    "1e4294967296", "1e-4294967296", "1e2147483648", "1e-2147483649", "1e2147483647",
    "1e9223372036854775807", "1e9223372036854775808", "1e18446744073709551616",
    "1e-18446744073709551617", "1e99999999999999999999999999999", "0e99999999999999999999999",
    "1" + "0" * 200 + "e-200", "0." + "0" * 300 + "123e305", "0." + "0" * 127 + "1",
    "0." + "0" * 128 + "1", "0." + "0" * 128 + "5", "0." + "0" * 128 + "49999",
    "1" + "0" * 164, "1" + "0" * 165, "9" * 165, "9" * 200 + "e-40",
    "0" * 100 + "1.5", "1." + "0" * 100, "1" + "0" * 37 + "5", "1" + "0" * 37 + "4" + "9" * 20,
    "1" + "0" * 37 + "5" + "0" * 20, "1" + "0" * 37 + "5" + "0" * 20 + "1", "9" * 39, "9" * 60,
    "-" + "9" * 39 + "e-10", "1E+00000000000000000000000001", "123456789012345678901234567890123456785",
    "1e-164", "1e-165", "12345e-132", "-12345e-132", "15e-130", "25e-130", "5e-130",
    "99999999999999999999999999999999999999e-166", "999999999999999999999999999999999999995e-167",
]

# Texts of ten million characters whose exponent (eight digits) exactly cancels the position of
# the point: their values are ordinary, so nothing may be lost while reading the exponent.
LONG_TEXTS = [
    "0." + "0" * 10_000_000 + "1e10000001",
    "1" + "0" * 10_000_000 + "e-10000000",
]

TEXT_ALPHABET = "0123456789.eE+- x_\t,\u0661"


def randomValidText(rng):
    r = rng.random()
    if r < 0.05:
        significant = ""
    else:
        if r < 0.40:
            count = rng.randint(1, MAX_DIGITS)
        elif r < 0.85:
            count = rng.randint(MAX_DIGITS + 1, 60)
        else:
            count = rng.randint(61, 120)
        significant = str(randomDigits(rng, count))
        if count > MAX_DIGITS and rng.random() < 0.4:
            # Force a tie or a near tie at the 39th digit.
            rest = count - MAX_DIGITS - 1
            tail = rng.choice(("5" + "0" * rest, "4" + "9" * rest,
                               "5" + "0" * (rest - 1) + "1" if rest else "5",
                               "9" * (rest + 1)))
            head = significant[:MAX_DIGITS]
            if rng.random() < 0.3:
                head = "9" * MAX_DIGITS
            significant = head + tail
    leading = "0" * (rng.choice((0, 0, 0, 1, 2, 5, 40)) if rng.random() < 0.4 else 0)
    trailing = "0" * (rng.choice((1, 2, 5, 40)) if rng.random() < 0.3 else 0)
    body = leading + significant + trailing
    if not body:
        body = "0" * rng.randint(1, 4)
    point = rng.randint(0, len(body)) if rng.random() < 0.6 else None
    # Aim the leading digit at a chosen magnitude, mostly ordinary, sometimes at the edges.
    t = rng.random()
    if t < 0.5:
        adjusted = rng.randint(-40, 40)
    elif t < 0.65:
        adjusted = rng.randint(MAX_ADJUSTED - 3, MAX_ADJUSTED + 2)
    elif t < 0.85:
        adjusted = rng.randint(MIN_EXPONENT - 3, MIN_NORMAL_ADJUSTED + 3)
    else:
        adjusted = rng.randint(MIN_EXPONENT - 20, MAX_ADJUSTED + 20)
    digitsBeforeSignificant = len(leading)
    afterPoint = len(body) - point if point is not None else 0
    # value = int(body) * 10^(exponent - afterPoint); its leading digit is at
    # exponent - afterPoint + len(significant + trailing) - 1.
    exponent = adjusted + afterPoint - (len(body) - digitsBeforeSignificant) + 1
    if point is None:
        mantissaText = body
    else:
        mantissaText = body[:point] + "." + body[point:]
    if exponent == 0 and rng.random() < 0.5:
        exponentText = ""
    else:
        marker = rng.choice("eE")
        exponentSign = "-" if exponent < 0 else rng.choice(("", "+"))
        exponentText = marker + exponentSign + "0" * rng.choice((0, 0, 0, 1, 3)) + str(
            abs(exponent))
    if point is None and not exponentText and rng.random() < 0.2:
        exponentText = "e0"
    sign = rng.choice(("", "", "+", "-", "-"))
    return sign + mantissaText + exponentText


def mutatedText(rng):
    text = randomValidText(rng)
    kind = rng.randrange(4)
    position = rng.randint(0, len(text))
    if kind == 0:
        return text[:position] + rng.choice(TEXT_ALPHABET) + text[position:]
    if kind == 1 and text:
        position = min(position, len(text) - 1)
        return text[:position] + text[position + 1:]
    if kind == 2:
        return text[:position] + rng.choice((".", "e", "-", "+", " ")) + text[position:]
    return text + rng.choice(("e", "x", " ", ".", "e+", "1"))


def randomText(rng):
    return mutatedText(rng) if rng.random() < 0.12 else randomValidText(rng)


# ---------------------------------------------------------------------------------------------
# Building the cases and running the driver.


# The cases the shortcuts of addition and multiplication single out: mantissas of 64 bits,
# products that keep every digit or drop 1 to 38 of them, carries to 10^38, dropped parts of
# exactly one half, and results at both ends of the exponent range.
def fastMantissa(rng):
    return rng.randint(1, 2**63 - 1) if rng.random() < 0.5 else rng.randint(2**63, 2**64 - 1)


def pairFastProduct(rng):
    kind = rng.randrange(6)
    if kind == 0:  # two 64-bit mantissas around 10^38, so that one digit is dropped or none
        a = rng.randint(10**18, 2**64 - 1)
        b = max(1, (POW10[38] + rng.randint(-10**6, 10**6)) // a + rng.choice((0, 1)))
    elif kind == 1:  # a whole number times a 38-digit weight: 1 to 19 digits dropped
        a, b = fastMantissa(rng), randomDigits(rng, MAX_DIGITS)
    elif kind == 2:  # exactly one half dropped
        a = randomDigits(rng, rng.randint(20, MAX_DIGITS))
        b = 5 * POW10[rng.randint(0, 37)] if rng.random() < 0.5 else 2 * a + 1
        b = b if b < POW10[MAX_DIGITS] else POW10[MAX_DIGITS] - 1
    elif kind == 3:  # rounding up to 10^38
        a = POW10[MAX_DIGITS] - rng.randint(1, 1000)
        b = POW10[rng.randint(0, 37)] + rng.choice((0, 1))
    else:
        a, b = randomDigits(rng, MAX_DIGITS), randomDigits(rng, rng.randint(1, MAX_DIGITS))
    if rng.random() < 0.3:  # results near the smallest or the largest exponent
        target = rng.choice((MIN_EXPONENT, MAX_EXPONENT)) + rng.randint(-40, 40)
        shift = digitCount(a * b) - MAX_DIGITS
        ea = rng.randint(MIN_EXPONENT, MAX_EXPONENT)
        eb = min(MAX_EXPONENT, max(MIN_EXPONENT, target - shift - ea))
    else:
        ea, eb = rng.randint(-30, 30), rng.randint(-30, 30)
    return number(randomSign(rng), a, ea), number(randomSign(rng), b, eb)


def pairFastSum(rng):
    kind = rng.randrange(4)
    exponent = rng.choice((rng.randint(-20, 20), MIN_EXPONENT, MAX_EXPONENT))
    if kind == 0:  # aligned 64-bit mantissas, either sign, around 2^63
        a, b = fastMantissa(rng), fastMantissa(rng)
        return number(randomSign(rng), a, exponent), number(randomSign(rng), b, exponent)
    if kind == 1:  # aligned sums carrying past 10^38
        a = POW10[MAX_DIGITS] - rng.randint(1, 10**6)
        b = rng.randint(1, 10**7)
        return number(False, a, exponent), number(False, b, exponent)
    # exponents one to forty apart, with the smaller operand's cut at exactly one half or next to it
    gap = rng.randint(1, 40)
    eb = rng.randint(MIN_EXPONENT, MAX_EXPONENT - gap)
    big = randomDigits(rng, rng.randint(1, MAX_DIGITS))
    small = 5 * POW10[min(gap, 37) - 1] + (rng.randint(-1, 1) if kind == 2 else 0)
    small = max(1, min(small, POW10[MAX_DIGITS] - 1))
    return number(randomSign(rng), big, eb + gap), number(randomSign(rng), small, eb)


FAST_PRODUCTS = pairFastProduct
FAST_SUMS = pairFastSum


def arithmeticCases(name, generator, rng):
    operation = ARITHMETIC_OPERATIONS[name]
    pairs = list(FIXED_PAIRS)
    while len(pairs) < CASES_PER_OPERATION:
        pairs.append(generator(rng))
    values = {}
    lines, expected = [], []
    for a, b in pairs:
        va = values.get(a)
        if va is None:
            va = values[a] = PyDecimal(a)
        vb = PyDecimal(b)
        lines.append(f"{name} {a} {b}")
        expected.append(arithmeticResult(operation, va, vb))
        if len(values) > 4096:
            values.clear()
    return lines, expected


def roundCases(rng):
    cases = list(FIXED_ROUNDS)
    while len(cases) < CASES_PER_OPERATION:
        scale = rng.randint(-10, 20)
        cases.append((roundOperand(rng, scale), scale))
    lines, expected = [], []
    for a, scale in cases:
        lines.append(f"round {a} {scale}")
        expected.append(roundResult(PyDecimal(a), scale))
    return lines, expected


def textCases(rng):
    texts = INVALID_TEXTS + ADVERSARIAL_TEXTS + LONG_TEXTS
    while len(texts) < CASES_PER_OPERATION:
        texts.append(randomText(rng))
    lines, expected = [], []
    for text in texts:
        assert "\n" not in text and "\r" not in text
        # The text is everything after the first space, kept verbatim (it may be empty).
        lines.append("text " + text)
        expected.append(textResult(text))
    return lines, expected


def runDriver(driver, lines):
    data = ("\n".join(lines) + "\n").encode("utf-8")
    completed = subprocess.run([driver], input=data, capture_output=True, timeout=600)
    return completed


def outcomeKind(text):
    if text.startswith("ERR"):
        return text
    if text.startswith("NaN"):
        return "NaN"
    if text.startswith("0 ") or text == "0":
        return "zero"
    return "number"


def shortened(text, limit=300):
    if len(text) <= limit:
        return repr(text)
    return f"{text[:limit // 2]!r} ... {text[-limit // 2:]!r} ({len(text)} characters)"


def check(name, lines, expected, completed):
    if completed.returncode != 0:
        print(f"{name}: driver exited with status {completed.returncode}")
        sys.stdout.write(completed.stderr.decode("utf-8", "replace")[-4000:])
        return False
    got = completed.stdout.decode("utf-8", "replace").split("\n")
    if got and got[-1] == "":
        got.pop()
    if len(got) != len(lines):
        print(f"{name}: driver printed {len(got)} lines for {len(lines)} cases")
        return False
    mismatches = [i for i in range(len(lines)) if got[i] != expected[i]]
    if mismatches:
        print(f"{name}: {len(mismatches)} of {len(lines)} cases differ; the first ones:")
        for i in mismatches[:MAX_REPORTED]:
            print(f"  input:    {shortened(lines[i])}\n  ours:     {shortened(got[i])}\n"
                  f"  expected: {shortened(expected[i])}")
        return False
    kinds = {}
    for text in expected:
        kind = outcomeKind(text)
        kinds[kind] = kinds.get(kind, 0) + 1
    detail = ", ".join(f"{kind} {count}" for kind, count in sorted(kinds.items()))
    print(f"{name}: {len(lines)} cases agree ({detail})")
    return True


def main():
    # Some texts carry mantissas and exponents longer than Python's default int() limit.
    if hasattr(sys, "set_int_max_str_digits"):
        sys.set_int_max_str_digits(0)
    if len(sys.argv) != 2:
        print("usage: decimal_oracle_test.py <path-to-decimal_oracle_driver>", file=sys.stderr)
        return 2
    driver = sys.argv[1]
    started = time.monotonic()
    builders = [
        ("add", lambda rng: arithmeticCases("add", additionGenerator(False), rng)),
        ("sub", lambda rng: arithmeticCases("sub", additionGenerator(True), rng)),
        ("mul", lambda rng: arithmeticCases("mul", MULTIPLY, rng)),
        ("div", lambda rng: arithmeticCases("div", DIVIDE, rng)),
        ("round", roundCases),
        ("text", textCases),
        # Appended, so that the cases above keep their seeds.
        ("add, fast paths", lambda rng: arithmeticCases("add", FAST_SUMS, rng)),
        ("sub, fast paths", lambda rng: arithmeticCases("sub", FAST_SUMS, rng)),
        ("mul, fast paths", lambda rng: arithmeticCases("mul", FAST_PRODUCTS, rng)),
    ]
    ok = True
    # The driver runs for one operation while the next one's cases are being generated.
    with ThreadPoolExecutor(max_workers=2) as pool:
        pending = []
        for index, (name, build) in enumerate(builders):
            lines, expected = build(random.Random(SEED + index))
            pending.append((name, lines, expected, pool.submit(runDriver, driver, lines)))
        for name, lines, expected, future in pending:
            ok = check(name, lines, expected, future.result()) and ok
    print(f"{'all operations agree' if ok else 'FAILED'} in {time.monotonic() - started:.1f} s")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
