// Counts the pixels of a picture for its scopes. Components are as they are displayed, 0 to 1; luma and the two colour
// differences are those of ITU-R BT.709.
//
//   waveform    256 levels (row 0 is black) by `columns` across the picture
//   vectors     256 by 256: Cb to the right, Cr upwards (row 0 is Cr -0.5)
//   histogram   red, green, blue and luma, 256 levels each

constant sampler_t kPixels = CLK_NORMALIZED_COORDS_FALSE | CLK_ADDRESS_CLAMP_TO_EDGE | CLK_FILTER_NEAREST;

int levelOf( float value )
{
    return clamp( ( int )( value * 255.0f + 0.5f ), 0, 255 );
}

kernel void clearCounts( global uint* waveform, global uint* vectors, global uint* histogram, short columns )
{
    const int at = get_global_id( 0 );
    if( at < columns * 256 )
        waveform[at] = 0;
    if( at < 256 * 256 )
        vectors[at] = 0;
    if( at < 4 * 256 )
        histogram[at] = 0;
}

kernel void measure( read_only image2d_t picture, global uint* waveform, global uint* vectors, global uint* histogram,
                     short columns )
{
    const int2 size = get_image_dim( picture );
    const int2 at = ( int2 )( get_global_id( 0 ), get_global_id( 1 ) );
    if( at.x >= size.x || at.y >= size.y )
        return;
    const float4 pixel = read_imagef( picture, kPixels, at );
    const float red = RED( pixel );
    const float green = GREEN( pixel );
    const float blue = BLUE( pixel );
    const float luma = 0.2126f * red + 0.7152f * green + 0.0722f * blue;
    atomic_inc( &waveform[levelOf( luma ) * columns + at.x * columns / size.x] );
    const int cb = levelOf( ( blue - luma ) / 1.8556f + 0.5f );
    const int cr = levelOf( ( red - luma ) / 1.5748f + 0.5f );
    atomic_inc( &vectors[cr * 256 + cb] );
    atomic_inc( &histogram[levelOf( red )] );
    atomic_inc( &histogram[256 + levelOf( green )] );
    atomic_inc( &histogram[512 + levelOf( blue )] );
    atomic_inc( &histogram[768 + levelOf( luma )] );
}
