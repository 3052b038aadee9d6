float4 main(float2 uv:TEXCOORD0):COLOR { float a[2][3]; for(int i=0;i<2;i++) for(int j=0;j<3;j++) a[i][j]=.125; float s=0; for(int i=0;i<2;i++) for(int j=0;j<3;j++) s+=a[i][j]; return float4(s,0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
