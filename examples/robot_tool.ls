/PROG  TOOLTIP
/ATTR
COMMENT		= "tool tip, ten stations";
/MN
   1:J P[1] 20% FINE    ;
   2:J P[2] 20% FINE    ;
   3:J P[3] 20% FINE    ;
   4:J P[4] 20% FINE    ;
   5:J P[5] 20% FINE    ;
   6:J P[6] 20% FINE    ;
   7:J P[7] 20% FINE    ;
   8:J P[8] 20% FINE    ;
   9:J P[9] 20% FINE    ;
  10:J P[10] 20% FINE    ;
/POS
P[1:"tip 1"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1180.250  mm,	Y =  -640.100  mm,	Z =  1015.400  mm,
	W =   172.300 deg,	P =    31.420 deg,	R =   -28.150 deg
};
P[2:"tip 2"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1394.600  mm,	Y =   112.350  mm,	Z =   842.150  mm,
	W =  -164.915 deg,	P =    52.080 deg,	R =     4.725 deg
};
P[3:"tip 3"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1052.800  mm,	Y =   718.950  mm,	Z =  1130.700  mm,
	W =   155.480 deg,	P =    18.645 deg,	R =    37.260 deg
};
P[4:"tip 4"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =   868.450  mm,	Y =  -318.200  mm,	Z =  1544.900  mm,
	W =  -138.275 deg,	P =    44.310 deg,	R =   -61.835 deg
};
P[5:"tip 5"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1512.150  mm,	Y =  -402.750  mm,	Z =  1388.050  mm,
	W =   121.660 deg,	P =    66.120 deg,	R =   -12.490 deg
};
P[6:"tip 6"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1306.700  mm,	Y =   545.500  mm,	Z =  1602.250  mm,
	W =  -171.040 deg,	P =    27.385 deg,	R =    78.915 deg
};
P[7:"tip 7"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =   934.550  mm,	Y =   236.400  mm,	Z =   655.800  mm,
	W =   163.920 deg,	P =    -8.765 deg,	R =   112.340 deg
};
P[8:"tip 8"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1448.900  mm,	Y =  -188.650  mm,	Z =   601.350  mm,
	W =   147.185 deg,	P =    39.550 deg,	R =   -95.205 deg
};
P[9:"tip 9"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1120.350  mm,	Y =   402.150  mm,	Z =  1755.600  mm,
	W =  -126.395 deg,	P =    71.240 deg,	R =    21.070 deg
};
P[10:"tip 10"]{
   GP1:
	UF : 0, UT : 0,		CONFIG : 'N U T, 0, 0, 0',
	X =  1275.050  mm,	Y =  -756.300  mm,	Z =  1492.750  mm,
	W =   178.510 deg,	P =   -14.925 deg,	R =   -44.680 deg
};
/END
