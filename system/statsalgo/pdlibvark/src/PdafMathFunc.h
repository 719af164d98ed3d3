// The three interpolators of the defocus computation: on a line, on a broken line and on a
// bilinear patch. Integer addresses and values, arithmetic in double, results truncated toward
// zero; none extrapolates.
#ifndef PDAFMATHFUNC_H
#define PDAFMATHFUNC_H

/// Value at f_xx on the line through (pf_x[0], pf_y[0]) and (pf_x[1], pf_y[1]); beyond the
/// ends, the end's value. Cannot fail.
void CalcAddressOnLine_slXslY(long* pf_x, long* pf_y, long f_xx, long* fp_yy);

/// Value at f_xx on the broken line of f_PointNum points with non-decreasing x. Returns 0, or -1
/// (result left alone) for fewer than 2 points, values above 0x7FFFFFFF or decreasing x.
signed char CalcAddressOnBrokenLine_ulXulY(unsigned long* pf_x, unsigned long* pf_y, unsigned long f_PointNum,
                                           unsigned long f_xx, unsigned long* pf_yy);

/// Bilinear value at (f_xx, f_yy) over x {pf_x[0], pf_x[1]} and y {pf_y[0], pf_y[1]}, with z
/// ordered (x0,y0), (x1,y0), (x0,y1), (x1,y1): x first, truncated, then y. Returns 0, or -1
/// (result left alone) outside the patch or on a degenerate one.
signed char CalcAddressOnPlane_slXslYslZ(long* pf_x, long* pf_y, long* pf_z, long f_xx, long f_yy, long* pf_zz);

#endif // PDAFMATHFUNC_H
