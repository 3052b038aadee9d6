int ki; float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; switch(ki){ case 1: a=1; break; case 2: a=.5; break; default: a=.1; } return float4(a,0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
