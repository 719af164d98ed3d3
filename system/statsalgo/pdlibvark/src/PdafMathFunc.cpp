#include "PdafMathFunc.h"

namespace
{
const unsigned long MaxInterpolatedValue = 0x7FFFFFFF;

// Two's complement sum: the midpoint of a vertical line must not trap on extreme values.
long WrappingSum(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) + static_cast<unsigned long>(b));
}
} // namespace

void CalcAddressOnLine_slXslY(long* pf_x, long* pf_y, long f_xx, long* fp_yy)
{
    long x0 = pf_x[0];
    long x1 = pf_x[1];
    long y0 = pf_y[0];
    long y1 = pf_y[1];

    if (x0 == x1)
    {
        // A vertical line has no slope: its value is the mean of the two ends, wherever f_xx is.
        *fp_yy = (y0 == y1) ? y0 : WrappingSum(y0, y1) / 2;
        return;
    }
    if (y0 == y1)
    {
        *fp_yy = y0;
        return;
    }
    if (x0 > x1)
    {
        long swap = x0;
        x0        = x1;
        x1        = swap;
        swap      = y0;
        y0        = y1;
        y1        = swap;
    }
    if (f_xx < x0)
    {
        *fp_yy = y0;
        return;
    }
    if (f_xx > x1)
    {
        *fp_yy = y1;
        return;
    }

    double value =
        ((static_cast<double>(y1) - static_cast<double>(y0)) * (static_cast<double>(f_xx) - static_cast<double>(x0)) /
         (static_cast<double>(x1) - static_cast<double>(x0))) +
        static_cast<double>(y0);
    *fp_yy = static_cast<long>(value);
}

signed char CalcAddressOnBrokenLine_ulXulY(unsigned long* pf_x, unsigned long* pf_y, unsigned long f_PointNum,
                                           unsigned long f_xx, unsigned long* pf_yy)
{
    if ((f_PointNum <= 1) || (nullptr == pf_x) || (nullptr == pf_y))
    {
        return -1;
    }
    unsigned long last = f_PointNum - 1;
    if ((pf_x[last] > MaxInterpolatedValue) || (f_xx > MaxInterpolatedValue))
    {
        return -1;
    }
    // A y above the limit and a decreasing x refuse the line alike: one pass finds either.
    if (pf_y[0] > MaxInterpolatedValue)
    {
        return -1;
    }
    for (unsigned long k = 1; k < f_PointNum; k++)
    {
        if ((pf_y[k] > MaxInterpolatedValue) || (pf_x[k] < pf_x[k - 1]))
        {
            return -1;
        }
    }

    if (f_xx < pf_x[0])
    {
        *pf_yy = pf_y[0];
        return 0;
    }
    if (f_xx > pf_x[last])
    {
        *pf_yy = pf_y[last];
        return 0;
    }

    // Here x[0] <= f_xx <= x[last] on non-decreasing x, so the first segment whose upper end
    // reaches f_xx encloses it, and there always is one: the search stops at the last point at
    // the latest. A value on an inner knot takes the segment below it.
    unsigned long k = 0;
    while (pf_x[k + 1] < f_xx)
    {
        k++;
    }
    long x[2]  = {static_cast<long>(pf_x[k]), static_cast<long>(pf_x[k + 1])};
    long y[2]  = {static_cast<long>(pf_y[k]), static_cast<long>(pf_y[k + 1])};
    long value = 0;
    CalcAddressOnLine_slXslY(x, y, static_cast<long>(f_xx), &value);
    *pf_yy = (value < 0) ? 0 : static_cast<unsigned long>(value);
    return 0;
}

signed char CalcAddressOnPlane_slXslYslZ(long* pf_x, long* pf_y, long* pf_z, long f_xx, long f_yy, long* pf_zz)
{
    long x0 = pf_x[0];
    long x1 = pf_x[1];
    long y0 = pf_y[0];
    long y1 = pf_y[1];

    if ((f_xx < x0) || (f_xx > x1) || (f_yy < y0) || (f_yy > y1) || (y0 >= y1) || (x0 >= x1))
    {
        return -1;
    }

    long top[2]    = {pf_z[0], pf_z[1]};
    long bottom[2] = {pf_z[2], pf_z[3]};
    long a         = 0;
    long b         = 0;
    CalcAddressOnLine_slXslY(pf_x, top, f_xx, &a);
    CalcAddressOnLine_slXslY(pf_x, bottom, f_xx, &b);

    long ends[2] = {a, b};
    CalcAddressOnLine_slXslY(pf_y, ends, f_yy, pf_zz);
    return 0;
}
